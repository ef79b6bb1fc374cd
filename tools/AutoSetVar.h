// A guard of one system variable for a stack frame: saves the variable when it is made, writes
// it back when it goes away, on every way out.
#pragma once

#include "adsdef.h"
#include "afxext.h"

class AFX_EXT_CLASS CAutoSetVar {
 public:
  /// Saves the variable's value. The default is the object snap mode.
  CAutoSetVar(const CString& varName = L"OSMODE");
  /// A copy restores the same saved value once more. The value is copied bit by bit: a text in
  /// it is shared, and nobody frees it.
  CAutoSetVar(const CAutoSetVar& other);
  CAutoSetVar& operator=(const CAutoSetVar& other);
  /// Writes the saved value back, whatever was read.
  ~CAutoSetVar();

  /// Sets the variable now; the saved value stays.
  void SetVar(const resbuf* pValue);

 private:
  CString m_strVarName;
  resbuf m_rbOldValue;
};
