#include "UserInputStateWatcher.h"

#include "UserInputReactor.h"

CUserInputStateWatcher* CUserInputStateWatcher::_pInstance = nullptr;

CUserInputStateWatcher* CUserInputStateWatcher::Instance() {
  if (!_pInstance) {
    _pInstance = new CUserInputStateWatcher;
  }
  return _pInstance;
}

CUserInputStateWatcher::CUserInputStateWatcher() : m_pReactor(new CUserInputReactor(nullptr)) {}

CUserInputStateWatcher::~CUserInputStateWatcher() {
  delete m_pReactor;
}

CUserInputStateWatcher& CUserInputStateWatcher::operator=(const CUserInputStateWatcher& other) =
    default;

void CUserInputStateWatcher::TurnOn() {
  m_pReactor->AttachToDocument(acDocManager->curDocument());
}

void CUserInputStateWatcher::TurnOff() {
  m_pReactor->DetachFromDocument();
}

bool CUserInputStateWatcher::InGetCorner() {
  return m_pReactor->IsAttached() && m_pReactor->IsInGetCorner();
}
