// Symbol tables and their records. A table is a named list of records in file order; names
// compare without regard to case. Drawings whose file lacks a table or a record that every
// drawing has (layer "0", model space) show it all the same; layers that entities name but
// the file does not list are there too.
#pragma once

#include "dbdimvar.h"
#include "dbmain.h"

// --- the common part ------------------------------------------------------------------------

class HOST_API AcDbSymbolTableRecord : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord);

  /// A copy that the caller frees (acutDelString).
  Acad::ErrorStatus getName(ACHAR*& name) const;
  /// Valid until the object changes or closes.
  Acad::ErrorStatus getName(const ACHAR*& name) const;
  /// Fails: eNotOpenForWrite, eInvalidInput (empty or with characters that names may not
  /// have), eDuplicateRecordName, eNotApplicable (a record that must keep its name).
  Acad::ErrorStatus setName(const ACHAR* name);
  /// Whether it depends on an external reference.
  bool isDependent() const;

 protected:
  AcDbSymbolTableRecord();
};

class HOST_API AcDbSymbolTableIterator {
 public:
  ~AcDbSymbolTableIterator();
  AcDbSymbolTableIterator(const AcDbSymbolTableIterator&) = delete;
  AcDbSymbolTableIterator& operator=(const AcDbSymbolTableIterator&) = delete;

  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const;
  void step(bool forward = true, bool skipDeleted = true);
  /// Fails: eInvalidInput when done.
  Acad::ErrorStatus getRecordId(AcDbObjectId& id) const;
  /// Fails: as acdbOpenObject.
  Acad::ErrorStatus getRecord(AcDbSymbolTableRecord*& record, AcDb::OpenMode mode = AcDb::kForRead,
                              bool openErased = false) const;

 protected:
  friend class AcDbSymbolTable;
  struct State;
  explicit AcDbSymbolTableIterator(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};

class HOST_API AcDbSymbolTable : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbSymbolTable);

  /// Fails: eKeyNotFound, eInvalidInput (null), eWasErased (erased only, unless allowed); the
  /// id is null then.
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id, bool getErased = false) const;
  Acad::ErrorStatus getAt(const ACHAR* name, AcDbSymbolTableRecord*& record, AcDb::OpenMode mode,
                          bool openErased = false) const;
  /// Erased records do not count.
  bool has(const ACHAR* name) const;
  bool has(AcDbObjectId id) const;
  /// A new iterator that the caller deletes.
  Acad::ErrorStatus newIterator(AcDbSymbolTableIterator*& iterator, bool atBeginning = true,
                                bool skipDeleted = true) const;
  /// Adds a record that is in no database; the table owns it then, and it is open for write.
  /// Fails: eNotOpenForWrite, eNullObjectPointer, eAlreadyInDb, eDuplicateRecordName,
  /// eInvalidInput (no name), eNotThatKindOfClass (a record of another table),
  /// eNotApplicable (the file has no place for such a table).
  Acad::ErrorStatus add(AcDbSymbolTableRecord* record);
  Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);

 protected:
  AcDbSymbolTable();
  static std::unique_ptr<AcDbSymbolTableIterator::State> stateOver(const AcDbSymbolTable& table,
                                                                   bool atBeginning,
                                                                   bool skipDeleted);
};

// One table with its iterator: the common part under the record's own type.
#define ACDB_SYMBOL_TABLE(TABLE, RECORD, ITERATOR)                                     \
  class HOST_API ITERATOR : public AcDbSymbolTableIterator {                           \
   public:                                                                             \
    Acad::ErrorStatus getRecord(RECORD*& record, AcDb::OpenMode mode = AcDb::kForRead, \
                                bool openErased = false) const;                        \
                                                                                       \
   private:                                                                            \
    friend class TABLE;                                                                \
    explicit ITERATOR(std::unique_ptr<State> state);                                   \
  };                                                                                   \
  class HOST_API TABLE : public AcDbSymbolTable {                                      \
   public:                                                                             \
    ACRX_DECLARE_MEMBERS(TABLE);                                                       \
    TABLE();                                                                           \
    using AcDbSymbolTable::getAt;                                                      \
    Acad::ErrorStatus getAt(const ACHAR* name, RECORD*& record, AcDb::OpenMode mode,   \
                            bool openErased = false) const;                            \
    Acad::ErrorStatus newIterator(ITERATOR*& iterator, bool atBeginning = true,        \
                                  bool skipDeleted = true) const;                      \
    Acad::ErrorStatus add(RECORD* record);                                             \
    Acad::ErrorStatus add(AcDbObjectId& id, RECORD* record);                           \
  }

// --- layers -----------------------------------------------------------------------------------

class HOST_API AcDbLayerTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord);
  AcDbLayerTableRecord();

  bool isOff() const;
  Acad::ErrorStatus setIsOff(bool off);
  bool isFrozen() const;
  /// Fails: eNotOpenForWrite, eNotApplicable (to freeze the current layer).
  Acad::ErrorStatus setIsFrozen(bool frozen);
  bool isLocked() const;
  Acad::ErrorStatus setIsLocked(bool locked);
  /// Hidden layers are those that the host keeps from its users' lists.
  bool isHidden() const;
  bool isPlottable() const;
  Acad::ErrorStatus setIsPlottable(bool plottable);
  AcCmColor color() const;
  Acad::ErrorStatus setColor(const AcCmColor& color);
  AcDbObjectId linetypeObjectId() const;
  Acad::ErrorStatus setLinetypeObjectId(AcDbObjectId linetype);
  AcDb::LineWeight lineWeight() const;
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight);
  AcDbObjectId materialId() const;
};
ACDB_SYMBOL_TABLE(AcDbLayerTable, AcDbLayerTableRecord, AcDbLayerTableIterator);

// --- linetypes, text styles, dimension styles, applications -----------------------------------

class HOST_API AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord);
  AcDbLinetypeTableRecord();

  /// A copy that the caller frees.
  ACHAR* comments() const;
  double patternLength() const;
  int numDashes() const;
  /// Positive for a dash, negative for a gap, 0 for a dot; 0 for an index out of range.
  double dashLengthAt(int index) const;
};
ACDB_SYMBOL_TABLE(AcDbLinetypeTable, AcDbLinetypeTableRecord, AcDbLinetypeTableIterator);

class HOST_API AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord);
  AcDbTextStyleTableRecord();

  /// Valid until the object changes or closes.
  Acad::ErrorStatus fileName(const ACHAR*& fileName) const;
  Acad::ErrorStatus setFileName(const ACHAR* fileName);
  Acad::ErrorStatus bigFontFileName(const ACHAR*& fileName) const;
  Acad::ErrorStatus setBigFontFileName(const ACHAR* fileName);
  /// 0: the height is prompted for with each text.
  double textSize() const;
  Acad::ErrorStatus setTextSize(double size);
  double xScale() const;
  Acad::ErrorStatus setXScale(double factor);
  double obliquingAngle() const;
  bool isShapeFile() const;
  bool isVertical() const;
};
ACDB_SYMBOL_TABLE(AcDbTextStyleTable, AcDbTextStyleTableRecord, AcDbTextStyleTableIterator);

/// The settings of a dimension style, dimension variables by their names (dbdimvar.h).
///
/// Setters return eNotOpenForWrite, eInvalidInput for a number that is not finite and for a
/// value out of the variable's range; the setting stays as it was then. What the file's
/// release does not know is taken and not written.
class HOST_API AcDbDimStyleTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDimStyleTableRecord);
  AcDbDimStyleTableRecord();

#define ACDB_DECLARE_NUMBER(GET, SET, CODE, SINCE, MISSING) \
  double GET() const;                                       \
  Acad::ErrorStatus SET(double value);
  ACDB_DIMENSION_NUMBERS(ACDB_DECLARE_NUMBER)
#undef ACDB_DECLARE_NUMBER

#define ACDB_DECLARE_INTEGER(GET, SET, CODE, SINCE, MISSING, LEAST, MOST) \
  int GET() const;                                                        \
  Acad::ErrorStatus SET(int value);
  ACDB_DIMENSION_INTEGERS(ACDB_DECLARE_INTEGER)
#undef ACDB_DECLARE_INTEGER

#define ACDB_DECLARE_FLAG(GET, SET, CODE, SINCE, MISSING) \
  bool GET() const;                                       \
  Acad::ErrorStatus SET(bool value);
  ACDB_DIMENSION_FLAGS(ACDB_DECLARE_FLAG)
#undef ACDB_DECLARE_FLAG

#define ACDB_DECLARE_COLOR(GET, SET, CODE) \
  AcCmColor GET() const;                   \
  Acad::ErrorStatus SET(const AcCmColor& value);
  ACDB_DIMENSION_COLORS(ACDB_DECLARE_COLOR)
#undef ACDB_DECLARE_COLOR

#define ACDB_DECLARE_WEIGHT(GET, SET, CODE) \
  AcDb::LineWeight GET() const;             \
  Acad::ErrorStatus SET(AcDb::LineWeight value);
  ACDB_DIMENSION_WEIGHTS(ACDB_DECLARE_WEIGHT)
#undef ACDB_DECLARE_WEIGHT

  // Texts are valid until the object changes or closes.
#define ACDB_DECLARE_TEXT(GET, SET, CODE) \
  const ACHAR* GET() const;               \
  Acad::ErrorStatus SET(const ACHAR* value);
  ACDB_DIMENSION_TEXTS(ACDB_DECLARE_TEXT)
#undef ACDB_DECLARE_TEXT

  /// 1 scientific, 2 decimal, 3 engineering, 4 architectural, 5 fractional (4 and 5 stacked),
  /// 6 and 7 the same not stacked, 8 as the desktop has it. Files before R2000 have this
  /// variable, later ones DIMLUNIT and DIMFRAC, which it stands for there.
  int dimunit() const;
  Acad::ErrorStatus setDimunit(int value);

  // Arrow blocks; null is the host's own arrow, closed and filled. By name the block is looked
  // up: in the record's drawing, for a record in no database in the drawing of the record it
  // was copied from, else in the working database. A name of one of the host's own arrows
  // ("ArchTick") finds its block under either spelling ("_ArchTick"); an empty name is null.
  // Fails: eKeyNotFound (no block of this name), eNoDatabase (no drawing to look in), and for
  // ids eNotThatKindOfClass, eWasErased, eWrongDatabase.
#define ACDB_DECLARE_BLOCK(GET, SET, CODE, LEGACY) \
  AcDbObjectId GET() const;                        \
  Acad::ErrorStatus SET(AcDbObjectId block);       \
  Acad::ErrorStatus SET(const ACHAR* name);
  ACDB_DIMENSION_BLOCKS(ACDB_DECLARE_BLOCK)
#undef ACDB_DECLARE_BLOCK

  /// Null where the record names none. Files before R13 have no such setting.
  AcDbObjectId dimtxsty() const;
  Acad::ErrorStatus setDimtxsty(AcDbObjectId textStyle);

  /// Takes over every setting of another style but its name. Blocks, text styles and linetypes
  /// go along by name; what this record's drawing lacks of them is left out.
  /// Fails: as AcDbObject::copyFrom.
  Acad::ErrorStatus copyFrom(const AcRxObject* other) override;
};
ACDB_SYMBOL_TABLE(AcDbDimStyleTable, AcDbDimStyleTableRecord, AcDbDimStyleTableIterator);

class HOST_API AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord);
  AcDbRegAppTableRecord();
};
ACDB_SYMBOL_TABLE(AcDbRegAppTable, AcDbRegAppTableRecord, AcDbRegAppTableIterator);

// --- views, coordinate systems, viewports ---------------------------------------------------

class HOST_API AcDbViewTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewTableRecord);
  AcDbViewTableRecord();
};
ACDB_SYMBOL_TABLE(AcDbViewTable, AcDbViewTableRecord, AcDbViewTableIterator);

class HOST_API AcDbUCSTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbUCSTableRecord);
  AcDbUCSTableRecord();

  AcGePoint3d origin() const;
  AcGeVector3d xAxis() const;
  AcGeVector3d yAxis() const;
};
ACDB_SYMBOL_TABLE(AcDbUCSTable, AcDbUCSTableRecord, AcDbUCSTableIterator);

/// Several records may have the same name here: the tiles of one configuration.
class HOST_API AcDbViewportTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbViewportTableRecord);
  AcDbViewportTableRecord();
};
ACDB_SYMBOL_TABLE(AcDbViewportTable, AcDbViewportTableRecord, AcDbViewportTableIterator);

// --- blocks -----------------------------------------------------------------------------------

class AcDbBlockTableRecordIterator;

/// A block: a named list of entities. Model space and paper spaces are blocks too.
class HOST_API AcDbBlockTableRecord : public AcDbSymbolTableRecord {
 public:
  ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord);
  AcDbBlockTableRecord();

  /// Appends an entity that is in no database, with vertices and attributes; the block owns it
  /// then, and it is open for write. Its layer and linetype are made where the drawing lacks
  /// them.
  /// Fails: eNotOpenForWrite, eNullEntityPointer, eAlreadyInDb, eIllegalEntityType (the
  /// file's version has no such entity, or it only goes with another one), eNullBlockName (a
  /// reference to no block), eOutOfMemory.
  Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
  Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
  /// A new iterator over the block's entities in file order, that the caller deletes. Entities
  /// may be appended and erased while it walks.
  Acad::ErrorStatus newIterator(AcDbBlockTableRecordIterator*& iterator, bool atBeginning = true,
                                bool skipDeleted = true) const;

  AcGePoint3d origin() const;
  Acad::ErrorStatus setOrigin(const AcGePoint3d& origin);
  /// Whether it is model space or a paper space.
  bool isLayout() const;
  /// The layout object of model space or a paper space; null where there is none.
  AcDbObjectId getLayoutId() const;
  bool isAnonymous() const;
  bool isFromExternalReference() const;
  bool isFromOverlayReference() const;
  /// Whether a definition of an attribute is in it.
  bool hasAttributeDefinitions() const;
};

class HOST_API AcDbBlockTableRecordIterator {
 public:
  ~AcDbBlockTableRecordIterator();
  AcDbBlockTableRecordIterator(const AcDbBlockTableRecordIterator&) = delete;
  AcDbBlockTableRecordIterator& operator=(const AcDbBlockTableRecordIterator&) = delete;

  void start(bool atBeginning = true, bool skipDeleted = true);
  bool done() const;
  void step(bool forward = true, bool skipDeleted = true);
  /// Fails: as acdbOpenAcDbEntity; eInvalidInput when done.
  Acad::ErrorStatus getEntity(AcDbEntity*& entity, AcDb::OpenMode mode = AcDb::kForRead,
                              bool openErased = false) const;
  Acad::ErrorStatus getEntityId(AcDbObjectId& id) const;
  /// Stands the iterator on this entity.
  /// Fails: eInvalidInput when it is not in the block.
  Acad::ErrorStatus seek(AcDbObjectId id);

 private:
  friend class AcDbBlockTableRecord;
  struct State;
  explicit AcDbBlockTableRecordIterator(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};

ACDB_SYMBOL_TABLE(AcDbBlockTable, AcDbBlockTableRecord, AcDbBlockTableIterator);
