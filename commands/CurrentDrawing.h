// A drawing as code that is written for the editor finds it: the one that is worked on.
#pragma once

#include "acdocman.h"
#include "commands/Drawing.h"

namespace quoin::commands {

/// The host's working database for as long as this lives: where names of blocks are looked up
/// for records that are in no drawing yet.
class WorkingDatabase {
 public:
  explicit WorkingDatabase(AcDbDatabase& database);
  ~WorkingDatabase();
  WorkingDatabase(const WorkingDatabase&) = delete;
  WorkingDatabase& operator=(const WorkingDatabase&) = delete;

 private:
  AcDbDatabase* m_before;
};

/// The current document of the editor for as long as this lives, with its database as the working
/// one. Modules are told of its opening and closing.
class CurrentDrawing {
 public:
  explicit CurrentDrawing(Drawing& drawing);
  ~CurrentDrawing();
  CurrentDrawing(const CurrentDrawing&) = delete;
  CurrentDrawing& operator=(const CurrentDrawing&) = delete;

 private:
  WorkingDatabase m_working;
  AcApDocument& m_document;
};

}  // namespace quoin::commands
