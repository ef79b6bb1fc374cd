#include "embedded/rx/CommandStack.h"

#include <algorithm>

#include "afxwin.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcEdCommand, AcRxObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcEdCommandStack, AcRxObject)

AcEdCommand::AcEdCommand(const ACHAR* globalName, const ACHAR* localName, Adesk::Int32 flags,
                         AcRxFunctionPtr function)
    : m_globalName(globalName), m_localName(localName), m_flags(flags), m_function(function) {}

namespace quoin::rx {
namespace {

bool sameName(const ACHAR* a, const ACHAR* b) {
  return CString(a).CompareNoCase(b) == 0;
}

bool isNamed(const AcEdCommand& command, const ACHAR* name) {
  return sameName(command.globalName(), name) || sameName(command.localName(), name);
}

bool isBlank(const ACHAR* text) {
  return !text || *text == 0;
}

}  // namespace

std::vector<CommandStack::Group>::iterator CommandStack::findGroup(const ACHAR* name) {
  return std::find_if(m_groups.begin(), m_groups.end(), [&](const Group& group) {
    return name && sameName(group.name.c_str(), name);
  });
}

Acad::ErrorStatus CommandStack::addCommand(const ACHAR* groupName, const ACHAR* globalName,
                                           const ACHAR* localName, Adesk::Int32 flags,
                                           AcRxFunctionPtr function) {
  if (isBlank(groupName) || isBlank(globalName) || !function) {
    return Acad::eInvalidInput;
  }
  const ACHAR* const local = isBlank(localName) ? globalName : localName;
  if (lookupCmd(groupName, globalName) || lookupCmd(groupName, local)) {
    return Acad::eDuplicateKey;
  }
  auto group = findGroup(groupName);
  if (group == m_groups.end()) {
    group = m_groups.insert(m_groups.end(), Group{groupName, {}});
  }
  group->entries.push_back(
      {std::make_unique<AcEdCommand>(globalName, local, flags, function), m_owner});
  return Acad::eOk;
}

Acad::ErrorStatus CommandStack::removeCmd(const ACHAR* groupName, const ACHAR* globalName) {
  const auto group = findGroup(groupName);
  if (group == m_groups.end() || !globalName) {
    return Acad::eKeyNotFound;
  }
  const auto removed = std::erase_if(group->entries, [&](const Entry& entry) {
    return sameName(entry.command->globalName(), globalName);
  });
  dropEmptyGroups();
  return removed > 0 ? Acad::eOk : Acad::eKeyNotFound;
}

Acad::ErrorStatus CommandStack::removeGroup(const ACHAR* groupName) {
  const auto group = findGroup(groupName);
  if (group == m_groups.end()) {
    return Acad::eKeyNotFound;
  }
  m_groups.erase(group);
  return Acad::eOk;
}

AcEdCommand* CommandStack::lookupCmd(const ACHAR* name) const {
  for (const Group& group : m_groups) {
    if (AcEdCommand* const command = lookupCmd(group.name.c_str(), name)) {
      return command;
    }
  }
  return nullptr;
}

AcEdCommand* CommandStack::lookupCmd(const ACHAR* groupName, const ACHAR* name) const {
  if (!groupName || !name) {
    return nullptr;
  }
  for (const Group& group : m_groups) {
    if (!sameName(group.name.c_str(), groupName)) {
      continue;
    }
    for (const Entry& entry : group.entries) {
      if (isNamed(*entry.command, name)) {
        return entry.command.get();
      }
    }
  }
  return nullptr;
}

void CommandStack::removeCommandsOf(const void* owner) {
  for (Group& group : m_groups) {
    std::erase_if(group.entries, [&](const Entry& entry) { return entry.owner == owner; });
  }
  dropEmptyGroups();
}

std::vector<std::wstring> CommandStack::groupNames() const {
  std::vector<std::wstring> names;
  for (const Group& group : m_groups) {
    names.push_back(group.name);
  }
  return names;
}

std::vector<std::wstring> CommandStack::commandNames() const {
  std::vector<std::wstring> names;
  for (const Group& group : m_groups) {
    for (const Entry& entry : group.entries) {
      names.emplace_back(entry.command->globalName());
    }
  }
  return names;
}

void CommandStack::dropEmptyGroups() {
  std::erase_if(m_groups, [](const Group& group) { return group.entries.empty(); });
}

}  // namespace quoin::rx
