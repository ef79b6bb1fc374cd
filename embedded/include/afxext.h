// Extension modules: libraries that share the host's framework. A module declares its
// exported classes with AFX_EXT_CLASS, registers itself once when the process attaches it
// and terminates itself when the process lets it go.
#pragma once

#include "afxwin.h"

// The module that defines _AFXEXT exports what carries these marks; all others import it.
#if defined(_WIN32)
#if defined(_AFXEXT)
#define AFX_EXT_CLASS __declspec(dllexport)
#else
#define AFX_EXT_CLASS __declspec(dllimport)
#endif
#else
#define AFX_EXT_CLASS __attribute__((visibility("default")))
#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1
#endif
#define AFX_EXT_API AFX_EXT_CLASS
#define AFX_EXT_DATA AFX_EXT_CLASS

class CDynLinkLibrary;

/// What the framework knows of one extension module; a static object of that module.
struct AFX_EXTENSION_MODULE {
  BOOL bInitialized;
  HMODULE hModule;
};

/// Notes the module's handle and marks it initialised.
/// Fails: returns FALSE, and changes nothing, when it is initialised already.
HOST_API BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& module, HMODULE handle);

/// Deletes the module's CDynLinkLibrary objects and marks it not initialised; a module that
/// is not initialised stays as it is.
HOST_API void AfxTermExtensionModule(AFX_EXTENSION_MODULE& module, BOOL all = FALSE);

/// An extension module's entry in the process's list of them. Made with `new` at attach; the
/// framework owns it and deletes it in AfxTermExtensionModule.
class HOST_API CDynLinkLibrary {
 public:
  explicit CDynLinkLibrary(AFX_EXTENSION_MODULE& module, BOOL system = FALSE);
  virtual ~CDynLinkLibrary();
  CDynLinkLibrary(const CDynLinkLibrary&) = delete;
  CDynLinkLibrary& operator=(const CDynLinkLibrary&) = delete;

  const AFX_EXTENSION_MODULE* module() const { return m_module; }

 private:
  AFX_EXTENSION_MODULE* m_module;
};

/// Defined by every module: called with DLL_PROCESS_ATTACH when the library enters the
/// process and with DLL_PROCESS_DETACH when it leaves; 0 refuses the attachment.
extern "C" int APIENTRY DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);
