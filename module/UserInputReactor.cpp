#include "UserInputReactor.h"

CUserInputReactor::CUserInputReactor(AcApDocument* pDoc) : m_pDocument(pDoc) {
  Register();
}

void CUserInputReactor::beginGetCorner(const AcGePoint3d*, const ACHAR*, int, const ACHAR*) {
  m_bInGetCorner = true;
}

void CUserInputReactor::endGetCorner(Acad::PromptStatus, AcGePoint3d&, const ACHAR*&) {
  m_bInGetCorner = false;
}

CUserInputReactor::~CUserInputReactor() {
  CUserInputReactor::DetachFromDocument();
}

void CUserInputReactor::AttachToDocument(AcApDocument* pDoc) {
  DetachFromDocument();
  m_pDocument = pDoc;
  Register();
}

void CUserInputReactor::DetachFromDocument() {
  if (m_pDocument) {
    m_pDocument->inputPointManager()->removeInputContextReactor(this);
    m_pDocument = nullptr;
  }
}

AcApDocument* CUserInputReactor::GetDocument() {
  return m_pDocument;
}

bool CUserInputReactor::IsAttached() {
  return m_pDocument != nullptr;
}

void CUserInputReactor::Register() {
  if (m_pDocument) {
    m_pDocument->inputPointManager()->addInputContextReactor(this);
  }
}
