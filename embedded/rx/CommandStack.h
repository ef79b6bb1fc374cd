// The registered commands of the running host. A command remembers the module that was being
// served when it was added, so that nothing of a module stays behind when it is closed.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "accmd.h"

namespace quoin::rx {

class HOST_API CommandStack : public AcEdCommandStack {
 public:
  Acad::ErrorStatus addCommand(const ACHAR* groupName, const ACHAR* globalName,
                               const ACHAR* localName, Adesk::Int32 flags,
                               AcRxFunctionPtr function) override;
  Acad::ErrorStatus removeCmd(const ACHAR* groupName, const ACHAR* globalName) override;
  Acad::ErrorStatus removeGroup(const ACHAR* groupName) override;
  AcEdCommand* lookupCmd(const ACHAR* name) const override;
  AcEdCommand* lookupCmd(const ACHAR* groupName, const ACHAR* name) const override;

  /// Whose commands the following addCommand calls add; null for the host's own.
  void setOwner(const void* owner) { m_owner = owner; }
  /// Removes every command that was added for this owner.
  void removeCommandsOf(const void* owner);

  /// The groups' names in the order in which they were made.
  std::vector<std::wstring> groupNames() const;
  /// The global names of all commands in the order in which lookupCmd finds them.
  std::vector<std::wstring> commandNames() const;

 private:
  struct Entry {
    std::unique_ptr<AcEdCommand> command;
    const void* owner;
  };
  struct Group {
    std::wstring name;
    std::vector<Entry> entries;
  };

  std::vector<Group>::iterator findGroup(const ACHAR* name);
  void dropEmptyGroups();

  std::vector<Group> m_groups;
  const void* m_owner = nullptr;
};

}  // namespace quoin::rx
