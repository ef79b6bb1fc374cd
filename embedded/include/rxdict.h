// A dictionary of run-time objects by name. The host keeps its own services in one, the
// system registry, under well-known names.
#pragma once

#include <map>
#include <string>

#include "rxobject.h"

/// Names to objects. Names differ by every character; the objects are not owned.
class HOST_API AcRxDictionary : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcRxDictionary);

  AcRxDictionary();

  /// The object under this name; null if there is none.
  AcRxObject* at(const ACHAR* key) const;
  bool has(const ACHAR* key) const { return at(key) != nullptr; }
  /// Puts an object under a name; returns the one that stood there, null if none.
  AcRxObject* atPut(const ACHAR* key, AcRxObject* object);
  /// Takes a name out; returns the object that stood there, null if none.
  AcRxObject* remove(const ACHAR* key);
  Adesk::UInt32 numEntries() const { return static_cast<Adesk::UInt32>(m_entries.size()); }

 private:
  std::map<std::wstring, AcRxObject*, std::less<>> m_entries;
};

/// The running host's system registry; null when no host runs.
HOST_API AcRxDictionary* acrxSysRegistry();

/// The object under a name in the system registry; null when no host runs or it has none.
HOST_API AcRxObject* acrxSystemObject(const ACHAR* key);
