// Input notifications: an input context reactor, registered with a document's input point
// manager, is told when the editor begins and ends a prompt in that document.
#pragma once

#include <vector>

#include "acadstrc.h"
#include "acarray.h"
#include "adsdef.h"
#include "dbid.h"

class AcGeMatrix3d;
class AcGePoint3d;
class AcGeVector3d;

namespace quoin::ed {
class InputPrompts;
}

/// Told of prompts. Every notification does nothing unless overridden. `initGetFlags` and
/// `keywords` are those of the prompt; a `keyword` is the one that the user typed instead of
/// a value, null otherwise.
class HOST_API AcEdInputContextReactor {
 public:
  AcEdInputContextReactor();
  AcEdInputContextReactor(const AcEdInputContextReactor&) = delete;
  AcEdInputContextReactor& operator=(const AcEdInputContextReactor&) = delete;

  virtual void beginGetPoint(const AcGePoint3d* pointIn, const ACHAR* promptString,
                             int initGetFlags, const ACHAR* keywords);
  virtual void endGetPoint(Acad::PromptStatus returnStatus, const AcGePoint3d& pointOut,
                           const ACHAR*& keyword);
  virtual void beginGetAngle(const AcGePoint3d* pointIn, const ACHAR* promptString,
                             int initGetFlags, const ACHAR* keywords);
  virtual void endGetAngle(Acad::PromptStatus returnStatus, double& angle, const ACHAR*& keyword);
  virtual void beginGetDistance(const AcGePoint3d* pointIn, const ACHAR* promptString,
                                int initGetFlags, const ACHAR* keywords);
  virtual void endGetDistance(Acad::PromptStatus returnStatus, double& distance,
                              const ACHAR*& keyword);
  virtual void beginGetOrientation(const AcGePoint3d* pointIn, const ACHAR* promptString,
                                   int initGetFlags, const ACHAR* keywords);
  virtual void endGetOrientation(Acad::PromptStatus returnStatus, double& angle,
                                 const ACHAR*& keyword);
  virtual void beginGetCorner(const AcGePoint3d* firstCorner, const ACHAR* promptString,
                              int initGetFlags, const ACHAR* keywords);
  virtual void endGetCorner(Acad::PromptStatus returnStatus, AcGePoint3d& secondCorner,
                            const ACHAR*& keyword);
  virtual void beginGetScaleFactor(const ACHAR* promptString, int initGetFlags,
                                   const ACHAR* keywords);
  virtual void endGetScaleFactor(Acad::PromptStatus returnStatus, double& factor,
                                 const ACHAR*& keyword);
  virtual void beginGetString(const ACHAR* promptString, int initGetFlags);
  virtual void endGetString(Acad::PromptStatus returnStatus, ACHAR*& text);
  virtual void beginGetKeyword(const ACHAR* promptString, int initGetFlags, const ACHAR* keywords);
  virtual void endGetKeyword(Acad::PromptStatus returnStatus, const ACHAR*& keyword);
  virtual void beginGetInteger(const ACHAR* promptString, int initGetFlags, const ACHAR* keywords);
  virtual void endGetInteger(Acad::PromptStatus returnStatus, int& value, const ACHAR*& keyword);
  virtual void beginGetColor(const int* defaultColor, const ACHAR* promptString, int initGetFlags,
                             const ACHAR* keywords);
  virtual void endGetColor(Acad::PromptStatus returnStatus, int& value, const ACHAR*& keyword);
  virtual void beginGetReal(const ACHAR* promptString, int initGetFlags, const ACHAR* keywords);
  virtual void endGetReal(Acad::PromptStatus returnStatus, double& value, const ACHAR*& keyword);
  virtual void beginEntsel(const ACHAR* promptString, int initGetFlags, const ACHAR* keywords);
  virtual void endEntsel(Acad::PromptStatus returnStatus, AcDbObjectId& entity,
                         AcGePoint3d& pointOut, const ACHAR* keyword);
  virtual void beginNentsel(const ACHAR* promptString, Adesk::Boolean pickFlag, int initGetFlags,
                            const ACHAR* keywords);
  virtual void endNentsel(Acad::PromptStatus returnStatus, const AcDbObjectId& entity,
                          const AcGePoint3d& pickPoint, const AcGeMatrix3d& transform,
                          const resbuf* referenceStack, const ACHAR* keyword);
  virtual void beginSSGet(const ACHAR* promptString, int initGetFlags, const ACHAR* keywords,
                          const ACHAR* selectionPrompts, const AcArray<AcGePoint3d>& points,
                          const resbuf* entityMask);
  virtual void endSSGet(Acad::PromptStatus returnStatus, const AcDbObjectIdArray& selection);
  virtual void beginDragSequence(const ACHAR* promptString);
  virtual void endDragSequence(Acad::PromptStatus returnStatus, AcGePoint3d& pickPoint,
                               AcGeVector3d& displacement);
  virtual void beginQuiescentState();
  virtual void endQuiescentState();

  virtual ~AcEdInputContextReactor();
};

/// The reactors of one document. A reactor is not owned and must be taken off before it goes;
/// closing the document takes all of them off.
class HOST_API AcEdInputPointManager {
 public:
  AcEdInputPointManager();
  ~AcEdInputPointManager();
  AcEdInputPointManager(const AcEdInputPointManager&) = delete;
  AcEdInputPointManager& operator=(const AcEdInputPointManager&) = delete;

  /// Fails: eInvalidInput (null), eDuplicateKey (is registered here already), eInvalidContext
  ///        (the document is closed).
  Acad::ErrorStatus addInputContextReactor(AcEdInputContextReactor* reactor);
  /// Fails: eInvalidInput (null), eKeyNotFound (is not registered here).
  Acad::ErrorStatus removeInputContextReactor(AcEdInputContextReactor* reactor);

 private:
  friend class quoin::ed::InputPrompts;
  bool has(const AcEdInputContextReactor* reactor) const;

  std::vector<AcEdInputContextReactor*> m_reactors;
  bool m_isClosed = false;
};
