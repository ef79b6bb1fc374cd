#include "AutoSetVar.h"

#include "acedads.h"

CAutoSetVar::CAutoSetVar(const CString& varName) : m_strVarName(varName), m_rbOldValue{} {
  acedGetVar(m_strVarName, &m_rbOldValue);
}

CAutoSetVar::CAutoSetVar(const CAutoSetVar&) = default;
CAutoSetVar& CAutoSetVar::operator=(const CAutoSetVar&) = default;

CAutoSetVar::~CAutoSetVar() {
  acedSetVar(m_strVarName, &m_rbOldValue);
}

void CAutoSetVar::SetVar(const resbuf* pValue) {
  acedSetVar(m_strVarName, pValue);
}
