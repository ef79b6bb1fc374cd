#include "ProjectScale.h"

#include "Log.h"
#include "ObjectFactory.h"
#include "ProjectModel.h"

namespace {

// The place that a failed check of the root node names in the log: the accessor's home in the
// product's source tree, mixed separators as its compiler spells them, and its line there.
constexpr const wchar_t* kAccessorSourcePath = L"businessaccess\\PaperWrapper/PaperWrapper";
constexpr int kAccessorSourceLine = 33;

/// The names are made for the call and gone after it: nothing of a look-up is kept.
IProjectManagerService* FindProjectManager() {
  return static_cast<IProjectManagerService*>(
      GetObjectFactory()->GetService(CString(ServiceName::kProjectManager), CString()));
}

}  // namespace

double GetProjectScale() {
  IModelNode* const pModelNode = FindProjectManager()->GetCurrentProject()->GetRootModelNode();
  // The check reports and does not stop; a missing node passes it and is then read all the
  // same, since callers run only while a project is open.
  if (pModelNode && pModelNode->GetType() != ROOT_MODEL) {
    CLog::LogError(kAssertionFormat, L"!pModelNode || pModelNode->GetType() == ROOT_MODEL",
                   kAccessorSourcePath, kAccessorSourceLine);
  }
  return pModelNode->GetProperty(kProjectScaleProperty);
}
