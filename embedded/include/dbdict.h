// Dictionaries: named lists of objects that are no entities. Every drawing of R13 or later has
// a root dictionary with the named ones in it (styles of multilines, materials, layouts, ...);
// any object may have one of its own (AcDbObject::extensionDictionary). Names compare without
// regard to case. Erased objects are in no dictionary until that is taken back.
#pragma once

#include "dbmain.h"

class HOST_API AcDbDictionaryIterator {
 public:
  ~AcDbDictionaryIterator();
  AcDbDictionaryIterator(const AcDbDictionaryIterator&) = delete;
  AcDbDictionaryIterator& operator=(const AcDbDictionaryIterator&) = delete;

  bool done() const;
  /// Steps on; false when there is nothing more.
  bool next();
  /// Null when done. Valid as long as the iterator.
  const ACHAR* name() const;
  /// Null when done.
  AcDbObjectId objectId() const;
  /// Fails: as acdbOpenAcDbObject.
  Acad::ErrorStatus getObject(AcDbObject*& object, AcDb::OpenMode mode = AcDb::kForRead);
  /// Stands the iterator on this entry; false, and it stays where it is, when it has none.
  bool setPosition(AcDbObjectId id);

 private:
  friend class AcDbDictionary;
  struct State;
  explicit AcDbDictionaryIterator(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};

class HOST_API AcDbDictionary : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDictionary);
  AcDbDictionary();

  // --- look-up ------------------------------------------------------------------------------
  /// Fails: eKeyNotFound, eInvalidInput (null or empty); the id is null then.
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id) const;
  /// Fails: as above and as acdbOpenAcDbObject; the pointer is null then.
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbObject*& object, AcDb::OpenMode mode) const;
  template <class T>
  Acad::ErrorStatus getAt(const ACHAR* name, T*& object, AcDb::OpenMode mode) const {
    object = nullptr;
    AcDbObjectId id;
    const Acad::ErrorStatus status = getAt(name, id);
    return status == Acad::eOk ? acdbOpenObject(object, id, mode) : status;
  }
  /// A copy of the entry's name that the caller frees (acutDelString).
  /// Fails: eKeyNotFound; the pointer is null then.
  Acad::ErrorStatus nameAt(AcDbObjectId id, ACHAR*& name) const;
  bool has(const ACHAR* name) const;
  bool has(AcDbObjectId id) const;
  Adesk::UInt32 numEntries() const;
  /// Over the entries as they are now, in file order; the caller deletes it.
  AcDbDictionaryIterator* newIterator() const;

  // --- changes ------------------------------------------------------------------------------
  /// Puts an object that is in no database into the drawing under this name; the dictionary
  /// owns it then, and it is open for write. What had the name is erased.
  /// Fails: eNotOpenForWrite, eNotInDatabase (this dictionary is in none),
  /// eNullObjectPointer, eAlreadyInDb, eInvalidInput (no name, or a style without one),
  /// eNotThatKindOfClass (an entity or a table's record), eNotApplicable (the drawing does not
  /// declare the class, or what had the name cannot be erased), eIllegalEntityType (the
  /// file's version has no such object); the id is null then.
  Acad::ErrorStatus setAt(const ACHAR* name, AcDbObject* object, AcDbObjectId& id);
  /// Takes an entry out. The object stays in the drawing without an owner: erase it, or give
  /// it to nobody and it is lost to other programs.
  /// Fails: eNotOpenForWrite, eKeyNotFound.
  Acad::ErrorStatus remove(const ACHAR* name);
  Acad::ErrorStatus remove(const ACHAR* name, AcDbObjectId& id);
  Acad::ErrorStatus remove(AcDbObjectId id);
  /// Gives an entry another name; false when there is no such entry, the name is taken, or the
  /// dictionary is not open for write.
  bool setName(const ACHAR* oldName, const ACHAR* newName);

  /// Whether the entries belong to the dictionary so that they are never purged.
  bool isTreatElementsAsHard() const;
};

/// A dictionary that returns one entry for every name that it does not have.
class HOST_API AcDbDictionaryWithDefault : public AcDbDictionary {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDictionaryWithDefault);
  AcDbDictionaryWithDefault();

  AcDbObjectId defaultId() const;
};
