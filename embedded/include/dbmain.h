// The drawing database: AcDbDatabase owns the objects of one drawing, AcDbObject is the root
// of their classes, AcDbEntity the root of what is drawn.
//
// An object of a database is reached by opening its id (acdbOpenObject) and must be closed;
// an object made with `new` belongs to whoever made it until it is appended to a database.
// Reading needs the object open for read or write, every setter needs it open for write and
// returns eNotOpenForWrite otherwise. A change touches only the tags that it is about; all
// else in the object's record stays as the file has it. docs/host-api.md tells the rules.
#pragma once

#include <memory>

#include "acdb.h"
#include "acutmem.h"
#include "dbcolor.h"
#include "dbid.h"
#include "dbptrar.h"
#include "gemat3d.h"
#include "gept3dar.h"
#include "rxobject.h"

class AcDbBlockTable;
class AcDbBlockTableRecord;
class AcDbDictionary;
class AcDbDimStyleTable;
class AcDbEntity;
class AcDbLayerTable;
class AcDbLinetypeTable;
class AcDbRegAppTable;
class AcDbTextStyleTable;
class AcDbUCSTable;
class AcDbViewTable;
class AcDbViewportTable;

namespace quoin::db {
struct Access;
struct DatabaseImpl;
struct ObjectImpl;
}  // namespace quoin::db

/// An axis-parallel box. A fresh one is inverted (minimum 1e20, maximum -1e20) and becomes
/// the first point or box that is added.
class HOST_API AcDbExtents {
 public:
  constexpr AcDbExtents() = default;
  AcDbExtents(const AcGePoint3d& minPoint, const AcGePoint3d& maxPoint)
      : m_min(minPoint), m_max(maxPoint) {}

  constexpr const AcGePoint3d& minPoint() const { return m_min; }
  constexpr const AcGePoint3d& maxPoint() const { return m_max; }
  /// Fails: eInvalidInput when a minimum exceeds its maximum.
  Acad::ErrorStatus set(const AcGePoint3d& minPoint, const AcGePoint3d& maxPoint);
  void addPoint(const AcGePoint3d& point);
  /// A fresh box adds nothing.
  void addExt(const AcDbExtents& other);
  /// Adds the extents of every entity of a block that has some, erased ones left out.
  /// Fails: eNullObjectPointer, eNullExtents (nothing in the block has extents).
  Acad::ErrorStatus addBlockExt(AcDbBlockTableRecord* block);
  void expandBy(const AcGeVector3d& move);
  /// The box around the transformed corners.
  void transformBy(const AcGeMatrix3d& matrix);
  /// Whether nothing was added yet.
  bool isFresh() const { return m_min.x > m_max.x; }

 private:
  static constexpr double kInfinite = 1.0e20;
  AcGePoint3d m_min{kInfinite, kInfinite, kInfinite};
  AcGePoint3d m_max{-kInfinite, -kInfinite, -kInfinite};
};

class HOST_API AcDbObject : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbObject);
  ~AcDbObject() override;
  AcDbObject(const AcDbObject&) = delete;
  AcDbObject& operator=(const AcDbObject&) = delete;

  // --- identity -----------------------------------------------------------------------
  /// Null while the object is in no database.
  AcDbObjectId objectId() const;
  AcDbObjectId id() const { return objectId(); }
  /// The block record of an entity, the polyline of a vertex, the table of a record, the
  /// dictionary of what is in it; null where the file tells none.
  AcDbObjectId ownerId() const;
  void getAcDbHandle(AcDbHandle& handle) const;
  AcDbDatabase* database() const;
  /// Null where it has none.
  AcDbObjectId extensionDictionary() const;
  /// Gives the object an empty dictionary of its own.
  /// Fails: eNotOpenForWrite, eNotInDatabase, eAlreadyInDb (it has one), eNotApplicable (files
  /// before R13 have no dictionaries).
  Acad::ErrorStatus createExtensionDictionary();

  // --- opening and closing ------------------------------------------------------------
  /// Ends one opening. After the last one the pointer must not be used any more.
  /// Fails: eNotInDatabase, eNotOpenForRead (closed already).
  Acad::ErrorStatus close();
  /// From the only reader to a writer.
  /// Fails: eWasOpenForRead (other readers), eWasOpenForWrite, eNotInDatabase.
  Acad::ErrorStatus upgradeOpen();
  /// Fails: eNotOpenForWrite, eNotInDatabase.
  Acad::ErrorStatus downgradeOpen();
  /// Erases the object, with its vertices and attributes, or takes that back.
  /// An object of a dictionary leaves it, and comes back under its name.
  /// Fails: eNotOpenForWrite, eWasErased (already so), eNotApplicable (a table, a block's
  /// model space, layer "0", a named dictionary: what a drawing cannot be without; an object
  /// that another record points to; taking back what is there), eDuplicateKey (taking back
  /// what another object has the name of by now).
  Acad::ErrorStatus erase(Adesk::Boolean erasing = Adesk::kTrue);
  /// Gives this object's id, handle and place to a new object of no database; both must be
  /// open for write. The new object is open for write then, this one belongs to the caller
  /// (who deletes it). keepXData copies extended data that the new object lacks.
  /// Fails: eNotOpenForWrite, eAlreadyInDb, eNullObjectPointer, eNotApplicable (not both
  /// entities), eIllegalEntityType (the file's version has no such entity).
  Acad::ErrorStatus handOverTo(AcDbObject* newObject, bool keepXData = true,
                               bool keepExtDict = true);

  bool isErased() const;
  bool isEffectivelyErased() const;
  bool isReadEnabled() const;
  bool isWriteEnabled() const;
  /// Whether a setter changed it since it was opened.
  bool isModified() const;
  /// Whether it is not in the file yet.
  bool isNewObject() const;
  bool isReallyClosing() const { return false; }

  // --- extended data ------------------------------------------------------------------
  /// A new list with the data of one application (its name first, code 1001), of all with a
  /// null name; null if there is none. The caller frees it (acutRelRb).
  resbuf* xData(const ACHAR* appName = nullptr) const;
  /// Replaces the data of each application that the list names; a name with nothing behind it
  /// takes its data away. An application that the drawing does not know is registered.
  /// Fails: eNotOpenForWrite, eInvalidInput (null, or a list that begins with no name),
  /// eInvalidDxfCode (a code outside 1000-1071).
  Acad::ErrorStatus setXData(const resbuf* data);

  // --- copies -------------------------------------------------------------------------
  /// A copy that is in no database, with vertices and attributes; extension dictionary and
  /// reactors stay behind. The caller owns it.
  AcRxObject* clone() const override;
  /// Takes over what an object of the same kind is, except for its name, handle and owner.
  /// Fails: eNotOpenForWrite, eNullObjectPointer, eNotThatKindOfClass.
  Acad::ErrorStatus copyFrom(const AcRxObject* other) override;

 protected:
  AcDbObject();

 private:
  friend struct quoin::db::Access;

  std::unique_ptr<quoin::db::ObjectImpl> m_impl;
};

class HOST_API AcDbEntity : public AcDbObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbEntity);
  ~AcDbEntity() override;

  /// The block record that the entity is in.
  AcDbObjectId blockId() const { return ownerId(); }

  // Setters with `doSubents` carry the value on to vertices and attributes.

  // --- layer --------------------------------------------------------------------------
  /// A copy of the name that the caller frees (acutDelString).
  ACHAR* layer() const;
  AcDbObjectId layerId() const;
  /// Fails: eNotOpenForWrite, eInvalidInput, eKeyNotFound (no such layer). In no database any
  /// name goes; the layer is made when the entity is appended.
  Acad::ErrorStatus setLayer(const ACHAR* name, Adesk::Boolean doSubents = Adesk::kTrue,
                             bool allowHiddenLayer = false);
  /// Fails: as above; eInvalidLayer (not a layer, erased, or hidden and not allowed),
  /// eWrongDatabase.
  Acad::ErrorStatus setLayer(AcDbObjectId layer, Adesk::Boolean doSubents = Adesk::kTrue,
                             bool allowHiddenLayer = false);

  // --- colour -------------------------------------------------------------------------
  AcCmColor color() const;
  AcCmEntityColor entityColor() const { return color().entityColor(); }
  /// 0 by block, 256 by layer; for a true colour the palette's nearest.
  Adesk::UInt16 colorIndex() const;
  /// In files before R2004, that know no true colours, the palette's nearest.
  Acad::ErrorStatus setColor(const AcCmColor& color, Adesk::Boolean doSubents = Adesk::kTrue,
                             AcDbDatabase* database = nullptr);
  /// Fails: eNotOpenForWrite, eInvalidInput (above 256).
  Acad::ErrorStatus setColorIndex(Adesk::UInt16 index, Adesk::Boolean doSubents = Adesk::kTrue);

  // --- linetype and line weight ---------------------------------------------------------
  /// A copy of the name that the caller frees.
  ACHAR* linetype() const;
  AcDbObjectId linetypeId() const;
  /// Fails: eNotOpenForWrite, eInvalidInput, eKeyNotFound (no such linetype).
  Acad::ErrorStatus setLinetype(const ACHAR* name, Adesk::Boolean doSubents = Adesk::kTrue);
  Acad::ErrorStatus setLinetype(AcDbObjectId linetype, Adesk::Boolean doSubents = Adesk::kTrue);
  double linetypeScale() const;
  /// Fails: eNotOpenForWrite, eInvalidInput (not above 0).
  Acad::ErrorStatus setLinetypeScale(double scale, Adesk::Boolean doSubents = Adesk::kTrue);
  AcDb::LineWeight lineWeight() const;
  /// In files before R2000, that know no line weights, nothing is written.
  Acad::ErrorStatus setLineWeight(AcDb::LineWeight weight, Adesk::Boolean doSubents = Adesk::kTrue);

  // --- visibility, material, plot style ---------------------------------------------------
  AcDb::Visibility visibility() const;
  Acad::ErrorStatus setVisibility(AcDb::Visibility visibility,
                                  Adesk::Boolean doSubents = Adesk::kTrue);
  /// A copy of the name that the caller frees; "ByLayer" where the entity names none.
  ACHAR* material() const;
  /// "ByLayer"'s id, null if the drawing has none, where the entity names none.
  AcDbObjectId materialId() const;
  /// Fails: eNotOpenForWrite, eKeyNotFound, eNotThatKindOfClass (the id is no material). In
  /// files before R2007, that know no materials, nothing is written.
  Acad::ErrorStatus setMaterial(const ACHAR* name, Adesk::Boolean doSubents = Adesk::kTrue);
  Acad::ErrorStatus setMaterial(AcDbObjectId material, Adesk::Boolean doSubents = Adesk::kTrue);
  /// Null where the entity names none.
  AcDbObjectId plotStyleNameId() const;

  /// Layer, colour with its book names, linetype and its scale, line weight, visibility,
  /// transparency, material and plot style of another entity.
  Acad::ErrorStatus setPropertiesFrom(const AcDbEntity* entity,
                                      Adesk::Boolean doSubents = Adesk::kTrue);
  /// The drawing's current layer, colour, linetype, scale and line weight.
  void setDatabaseDefaults(AcDbDatabase* database);

  // --- geometry -------------------------------------------------------------------------
  /// Exact for lines, arcs, circles, points and polylines; text by the proportions of a
  /// common font; block references with what they show, arrays and nesting included.
  /// Fails: eNotApplicable (this kind's extents are not known), eNullExtents (it shows
  /// nothing); the box is fresh then.
  virtual Acad::ErrorStatus getGeomExtents(AcDbExtents& extents) const;
  /// Fails: eNotOpenForWrite, eNotApplicable (this kind cannot be transformed),
  /// eCannotScaleNonUniformly, eSingularMatrix, eInvalidInput (not finite); the entity stays
  /// as it is then.
  virtual Acad::ErrorStatus transformBy(const AcGeMatrix3d& matrix);
  /// A transformed clone, owned by the caller; null when it fails.
  Acad::ErrorStatus getTransformedCopy(const AcGeMatrix3d& matrix, AcDbEntity*& copy) const;

 protected:
  AcDbEntity();
  friend struct quoin::db::Access;
};

/// Entities with a course from a start to an end.
class HOST_API AcDbCurve : public AcDbEntity {
 public:
  ACRX_DECLARE_MEMBERS(AcDbCurve);
  ~AcDbCurve() override;

  virtual Adesk::Boolean isClosed() const;
  /// World coordinates.
  /// Fails: eNotApplicable (it has none), eDegenerateGeometry (no vertices).
  virtual Acad::ErrorStatus getStartPoint(AcGePoint3d& point) const;
  virtual Acad::ErrorStatus getEndPoint(AcGePoint3d& point) const;

 protected:
  AcDbCurve();
};

/// Walks objects that belong to another one: vertices, attributes.
class HOST_API AcDbObjectIterator {
 public:
  ~AcDbObjectIterator();
  AcDbObjectIterator(const AcDbObjectIterator&) = delete;
  AcDbObjectIterator& operator=(const AcDbObjectIterator&) = delete;

  void start(bool atBeginning = true, bool skipErased = true);
  bool done() const;
  void step(bool forwards = true, bool skipErased = true);
  /// Null when the owner is in no database.
  AcDbObjectId objectId() const;
  /// The object itself where the owner is in no database and owns it; else null.
  AcDbEntity* entity() const;

 private:
  friend struct quoin::db::Access;
  struct State;
  explicit AcDbObjectIterator(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};

/// One drawing. It deletes every object that is in it.
class HOST_API AcDbDatabase : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcDbDatabase);
  /// A new drawing: with `buildDefaultDrawing` (and until a file is read) an empty one of the
  /// newest version, in metric units. `noDocument` tells that no document will show it.
  explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
  ~AcDbDatabase() override;
  AcDbDatabase(const AcDbDatabase&) = delete;
  AcDbDatabase& operator=(const AcDbDatabase&) = delete;

  // --- files ------------------------------------------------------------------------------
  /// Reads a drawing file of any format that the host knows, told by its content, into a
  /// database made without a default drawing.
  /// Fails: eFileNotFound, eFileAccessErr, eUnsupportedFileFormat, eBadDxfFile and other
  /// codes of bad files, eUserBreak, eOutOfMemory, eNotApplicable (a file was read before, or
  /// objects are open); the database stays empty. hostx::lastFileError has the words.
  Acad::ErrorStatus readDwgFile(const ACHAR* fileName, int shareMode = _SH_DENYWR,
                                bool allowCPConversion = false, const wchar_t* password = nullptr);
  /// As readDwgFile, for DXF files; the log file is not written.
  Acad::ErrorStatus dxfIn(const ACHAR* fileName, const ACHAR* logFileName = nullptr);
  /// Writes the drawing in the version and form in which it was read. The file under that
  /// name is the old one or the new one at every moment, and whole; `keepBackup` leaves the
  /// old one beside it (the name with ".bak", ".2.bak", ... behind it), unless both are the
  /// same.
  /// Fails: eFileAccessErr, eFileWriteError, eUserBreak, eFileSharingViolation (somebody has
  /// changed the file since it was read), eNotApplicable (the name is that of a file that this
  /// database failed to read), eUnsupportedFileFormat (the name's ending is that of a format
  /// which would not be in the file).
  Acad::ErrorStatus saveAs(const ACHAR* fileName, bool keepBackup = false);
  Acad::ErrorStatus dxfOut(const ACHAR* fileName) { return saveAs(fileName); }
  /// The path of the file that was read, or saved last.
  /// Fails: eNotApplicable (no file yet); the text is empty then.
  Acad::ErrorStatus getFilename(const ACHAR*& fileName) const;
  AcDb::AcDbDwgVersion originalFileVersion() const;

  // --- symbol tables ------------------------------------------------------------------------
  // Each opens a table in this mode.
  // Fails: as acdbOpenObject; the pointer is null then.
  Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbDimStyleTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbRegAppTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbUCSTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbViewTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getSymbolTable(AcDbViewportTable*& table, AcDb::OpenMode mode);
  Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  Acad::ErrorStatus getLayerTable(AcDbLayerTable*& table, AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  Acad::ErrorStatus getLinetypeTable(AcDbLinetypeTable*& table,
                                     AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  Acad::ErrorStatus getTextStyleTable(AcDbTextStyleTable*& table,
                                      AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  Acad::ErrorStatus getDimStyleTable(AcDbDimStyleTable*& table,
                                     AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  Acad::ErrorStatus getRegAppTable(AcDbRegAppTable*& table, AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  Acad::ErrorStatus getUCSTable(AcDbUCSTable*& table, AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  Acad::ErrorStatus getViewTable(AcDbViewTable*& table, AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  Acad::ErrorStatus getViewportTable(AcDbViewportTable*& table,
                                     AcDb::OpenMode mode = AcDb::kForRead) {
    return getSymbolTable(table, mode);
  }
  AcDbObjectId blockTableId() const;
  AcDbObjectId layerTableId() const;
  AcDbObjectId linetypeTableId() const;
  AcDbObjectId textStyleTableId() const;
  AcDbObjectId dimStyleTableId() const;
  AcDbObjectId regAppTableId() const;

  // --- dictionaries -----------------------------------------------------------------------
  // Each opens a dictionary in this mode. Opened for write, one that a drawing of R13 or later
  // lacks is made.
  // Fails: eNotApplicable (files before R13 have no dictionaries), eKeyNotFound (not there, to
  // be read), and as acdbOpenObject; the pointer is null then.
  Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dictionary,
                                              AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getMLStyleDictionary(AcDbDictionary*& dictionary,
                                         AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getMaterialDictionary(AcDbDictionary*& dictionary,
                                          AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getGroupDictionary(AcDbDictionary*& dictionary,
                                       AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getLayoutDictionary(AcDbDictionary*& dictionary,
                                        AcDb::OpenMode mode = AcDb::kForRead);
  Acad::ErrorStatus getPlotStyleNameDictionary(AcDbDictionary*& dictionary,
                                               AcDb::OpenMode mode = AcDb::kForRead);
  // Null where the drawing has none.
  AcDbObjectId mLStyleDictionaryId() const;
  AcDbObjectId materialDictionaryId() const;
  AcDbObjectId groupDictionaryId() const;
  AcDbObjectId layoutDictionaryId() const;
  AcDbObjectId plotStyleNameDictionaryId() const;

  // --- well-known objects -----------------------------------------------------------------
  AcDbObjectId layerZero() const;
  AcDbObjectId continuousLinetype() const;
  AcDbObjectId byLayerLinetype() const;
  AcDbObjectId byBlockLinetype() const;
  /// Null in drawings without objects (R12).
  AcDbObjectId namedObjectsDictionaryId() const;
  /// Null where the drawing has none.
  AcDbObjectId byLayerMaterial() const;

  // --- ids --------------------------------------------------------------------------------
  /// The object with this handle. (Reserving an id for a handle that no object has is not
  /// offered: createIfNotFound returns eNotApplicable then.)
  /// Fails: eUnknownHandle, eNullHandle, eNotApplicable; the id is null then.
  Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, bool createIfNotFound,
                                    const AcDbHandle& handle, Adesk::UInt32 xRefId = 0);
  /// The next handle that a new object will get; null where the file gives none.
  AcDbHandle handseed() const;
  Adesk::Int32 approxNumObjects() const;

  // --- header variables ---------------------------------------------------------------------
  // A variable that the file does not set reads as its default.
  AcDb::UnitsValue insunits() const;
  Acad::ErrorStatus setInsunits(AcDb::UnitsValue units);
  /// 0 imperial, 1 metric.
  Adesk::Int16 measurement() const;
  AcDbObjectId clayer() const;
  Acad::ErrorStatus setClayer(AcDbObjectId layer);
  AcCmColor cecolor() const;
  AcDbObjectId celtype() const;
  double celtscale() const;
  AcDb::LineWeight celweight() const;
  double ltscale() const;
  double textsize() const;
  AcDbObjectId textstyle() const;
  double dimscale() const;
  Adesk::Int16 pdmode() const;
  double pdsize() const;
  AcGePoint3d extmin() const;
  AcGePoint3d extmax() const;
  AcGePoint3d insbase() const;
  // Setters leave a file alone that has the value already, said or by default.
  // Fails: eInvalidInput (not finite, or out of the variable's range), eNotApplicable (the
  // file's release has no such variable), and for ids what they are not.
  /// Of a true colour the palette's nearest is written.
  Acad::ErrorStatus setCecolor(const AcCmColor& color);
  Acad::ErrorStatus setCeltype(AcDbObjectId linetype);
  Acad::ErrorStatus setCeltscale(double scale);
  Acad::ErrorStatus setCelweight(AcDb::LineWeight weight);
  Acad::ErrorStatus setLtscale(double scale);
  Acad::ErrorStatus setTextsize(double size);
  Acad::ErrorStatus setTextstyle(AcDbObjectId style);
  Acad::ErrorStatus setDimscale(double scale);
  Acad::ErrorStatus setPdmode(Adesk::Int16 mode);
  Acad::ErrorStatus setPdsize(double size);
  Acad::ErrorStatus setInsbase(const AcGePoint3d& base);
  Acad::ErrorStatus setMeasurement(Adesk::Int16 system);

 private:
  friend struct quoin::db::Access;
  std::unique_ptr<quoin::db::DatabaseImpl> m_impl;
};

// --- opening --------------------------------------------------------------------------------

/// Opens an object of a database. Any number up to 256 may read it, or one write it.
/// Fails: eNullObjectId, eInvalidInput (kForNotify, a bad id), eWasErased, eWasOpenForWrite,
/// eWasOpenForRead (to write what others read), eAtMaxReaders, ePermanentlyErased; the
/// pointer is null then.
HOST_API Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id,
                                              AcDb::OpenMode mode, bool openErased = false);
/// As above; eNotThatKindOfClass when it is no entity.
HOST_API Acad::ErrorStatus acdbOpenAcDbEntity(AcDbEntity*& entity, AcDbObjectId id,
                                              AcDb::OpenMode mode, bool openErased = false);

/// As acdbOpenAcDbObject; eNotThatKindOfClass when it is no T.
template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id, AcDb::OpenMode mode = AcDb::kForRead,
                                 bool openErased = false) {
  object = nullptr;
  AcDbObject* opened = nullptr;
  const Acad::ErrorStatus status = acdbOpenAcDbObject(opened, id, mode, openErased);
  if (status != Acad::eOk) {
    return status;
  }
  object = T::cast(opened);
  if (!object) {
    opened->close();
    return Acad::eNotThatKindOfClass;
  }
  return Acad::eOk;
}
