// The lossless record store: a drawing file in memory as one buffer, with a stub for every
// record (all tags from a group 0 up to the next group 0) that points into it. What nobody
// changes is never parsed further and is written back as it stands; a changed record gets
// bytes of its own, in the same format. Typed classes (AcDbLine, ...) are views onto stubs.
//
// Memory: the buffer plus about 64 bytes a record, 8 bytes a list entry and 4 to 8 bytes a
// handle. Stubs never move, so an AcDbObjectId is a stub's address.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/dxf/DrawingSource.h"
#include "embedded/dxf/Format.h"
#include "embedded/dxf/Tag.h"

class AcDbObject;
class AcDbDatabase;

namespace quoin::dxf {
class RecordStore;

enum class Section : std::uint8_t { Header, Classes, Tables, Blocks, Entities, Objects, Other };

/// What a stub stands for, as far as the store itself must know.
enum class Role : std::uint8_t {
  Table,        // TABLE head of a symbol table
  TableRecord,  // LAYER, LTYPE, STYLE, BLOCK_RECORD, ...
  BlockBegin,   // BLOCK
  BlockEnd,     // ENDBLK
  Entity,       // a top-level entity of a block
  SubEntity,    // VERTEX, ATTRIB, SEQEND: belongs to the entity in front of it
  Object,       // a record of OBJECTS
  Other         // CLASS, unknown sections' records, ...
};

}  // namespace quoin::dxf

/// One record of a drawing. The address is the identity behind AcDbObjectId.
struct AcDbStub {
  quoin::dxf::RecordStore* store = nullptr;
  /// The live typed view while the object is open (or kept); managed by embedded/db.
  AcDbObject* object = nullptr;
  /// The record's tags: in the file's buffer, or in bytes of its own once changed.
  const char* data = nullptr;
  std::uint64_t handle = 0;  // 0: the file gives none (R12 without handles); never changes
  AcDbStub* owner = nullptr;
  std::uint32_t size = 0;
  std::uint32_t index = 0;  // position in file order; new records follow
  std::uint16_t kind = 0;   // index into the store's kind names
  quoin::dxf::Section section = quoin::dxf::Section::Other;
  quoin::dxf::Role role = quoin::dxf::Role::Other;
  bool erased = false;
  bool changed = false;  // data is the record's own; views of it end with the next replace()
  bool isNew = false;    // not in the file yet

  std::string_view bytes() const { return {data, size}; }
};

namespace quoin::dxf {

/// Stands for "the file has no such place".
inline constexpr std::size_t kNoPlace = static_cast<std::size_t>(-1);

/// One symbol table (LAYER, BLOCK_RECORD, ...) in file order, erased records included.
struct Table {
  std::string name;          // "LAYER"
  AcDbStub* head = nullptr;  // the TABLE record; null when the file has no such table
  std::vector<AcDbStub*> records;
  std::size_t insertAt = kNoPlace;  // where new records go (before ENDTAB); kNoPlace: no TABLE
};

/// One block with its top-level entities in file order, erased ones included.
struct Block {
  /// As the file spells it; the two layouts are always "*Model_Space" and "*Paper_Space"
  /// (R12 files write "$MODEL_SPACE").
  std::wstring name;
  AcDbStub* record = nullptr;       // BLOCK_RECORD; a stub without bytes where there is none
  AcDbStub* begin = nullptr;        // BLOCK; null where the file has none (R12 model space)
  AcDbStub* end = nullptr;          // ENDBLK
  std::vector<AcDbStub*> entities;  // of model and paper space too, wherever the file has them
  std::size_t insertAt = kNoPlace;  // where new entities go (before ENDBLK or ENDSEC)
};

/// What a reader tolerates but somebody may want to know.
struct Warning {
  std::uint64_t offset = 0;  // in the file
  std::string record;        // "LINE 2F"; may be empty
  std::string text;          // "the handle is taken by the LINE in line 120"
};

/// Progress of a long read or write, 0 to 1; returns false to stop it.
using Progress = std::function<bool(double fraction)>;

class HOST_API RecordStore {
 public:
  RecordStore();
  ~RecordStore();
  RecordStore(const RecordStore&) = delete;
  RecordStore& operator=(const RecordStore&) = delete;

  // --- reading and writing ------------------------------------------------------------
  /// Takes over a whole DXF file (ASCII or binary, any version) and indexes its records.
  /// Model space and the layer "0" exist afterwards even if the file lacks them (as stubs
  /// without bytes, that are not written unless changed).
  /// Fails: throws FileError with line (ASCII) or offset (binary), record and cause; the
  /// store is empty then. A stop by `progress` throws eUserBreak.
  void load(std::string buffer, const std::string& fileName, const Progress& progress = {});
  /// The code page of all text of the drawings that are loaded from now on, whatever they say
  /// themselves; empty for what they say. A name that os::CodePage knows.
  void setCodePage(std::string name) { m_givenCodePage = std::move(name); }
  const std::string& givenCodePage() const { return m_givenCodePage; }
  /// The file of another format that the tags were made from; null for a DXF file.
  const DrawingSource* source() const { return m_source.get(); }
  void setSource(std::unique_ptr<DrawingSource> source) { m_source = std::move(source); }
  /// Hands the file's bytes, in order, to `write`: unchanged stretches as whole blocks.
  /// An untouched store gives exactly the bytes it was loaded from.
  /// Fails: throws FileError with eUserBreak when `progress` returns false; what `write`
  /// throws passes through.
  void save(const std::function<void(std::string_view)>& write,
            const Progress& progress = {}) const;
  /// Forgets everything; every stub is gone.
  void clear();
  const Format& format() const { return m_format; }
  const std::string& fileName() const { return m_fileName; }
  /// Bytes of the file that was loaded.
  std::size_t fileSize() const;
  /// What was odd in the file, in file order; only the first hundred are kept.
  const std::vector<Warning>& warnings() const { return m_warnings; }
  /// Adds what a codec found; only the first hundred are kept.
  void addWarning(Warning warning);
  bool isEmpty() const { return m_stubs.empty(); }
  bool isChanged() const;

  // --- records ------------------------------------------------------------------------
  const std::deque<AcDbStub>& stubs() const { return m_stubs; }
  /// The stub with this handle, erased ones included; null if there is none. Of several
  /// records with one handle the first in the file is found (the others give a warning).
  AcDbStub* find(std::uint64_t handle) const;
  /// "LINE" for a stub: the value of its group 0.
  std::string_view kindName(const AcDbStub& stub) const { return m_kindNames[stub.kind]; }
  /// 1-based line of the record in an ASCII file, byte offset in a binary one; 0 for new.
  std::uint64_t lineOf(const AcDbStub& stub) const;

  /// "LINE 2F" for messages.
  std::string describe(const AcDbStub& stub) const;

  /// Gives the record bytes of its own (whole tags in format(), from its group 0 on); the
  /// former ones are freed. The bytes that the file has for it make it unchanged again.
  /// Fails: throws FileError for bytes that do not begin with a group 0.
  void replace(AcDbStub& stub, std::string bytes);
  /// An erased entity takes its sub-entities along, an erased BLOCK_RECORD its whole block,
  /// without a change to their own flags: un-erasing brings back what was there.
  void setErased(AcDbStub& stub, bool erased);
  /// Whether the record itself or what it belongs to (see setErased) is erased.
  bool isErased(const AcDbStub& stub) const;
  /// Adds a record at the end of a block, a table or the OBJECTS section. `bytes` are in
  /// format(); the caller has put the handle and owner tags that format() asks for.
  AcDbStub* appendEntity(Block& block, std::string bytes, std::uint64_t handle);
  AcDbStub* appendTableRecord(Table& table, std::string bytes, std::uint64_t handle);
  AcDbStub* appendObject(std::string bytes, std::uint64_t handle);
  /// Adds VERTEX/ATTRIB/SEQEND records behind an entity: a SEQEND at the very end, others in
  /// front of the SEQEND.
  AcDbStub* appendSubEntity(AcDbStub& parent, std::string bytes, std::uint64_t handle);
  /// Adds a stub without bytes that stands for a table record which the file does not have
  /// ("LAYER"); replace() with bytes makes it one, at the end of its table.
  AcDbStub* appendPlaceholder(std::string_view kind);
  /// Gives such a stub the handle that its first bytes will name, before it gets them.
  void setPlaceholderHandle(AcDbStub& placeholder, std::uint64_t handle);
  /// The sub-entities of an entity in order, SEQEND included.
  std::vector<AcDbStub*> subEntities(const AcDbStub& parent) const;

  /// The next free handle ($HANDSEED or one above the highest in use, whichever is more);
  /// 0 where the file has no handles (R12 with $HANDLING 0). Saving writes $HANDSEED.
  std::uint64_t newHandle();
  /// What newHandle() would return.
  std::uint64_t nextHandle() const;

  // --- structure ----------------------------------------------------------------------
  std::deque<Table>& tables() { return m_tables; }
  /// By name ("LAYER"), in any case; null if the file has none.
  Table* table(std::string_view name);
  /// As table(), made with a TABLE record of its own where the file has none.
  Table& ensureTable(std::string_view name);
  std::deque<Block>& blocks() { return m_blocks; }
  /// By name, in any case.
  Block* block(std::wstring_view name);
  Block& modelSpace();
  /// The active paper space; null if the file has none.
  Block* paperSpace();
  /// Gives a block another name in the store; its records are the caller's business.
  void renameBlock(Block& block, std::wstring name);
  /// The block that this BLOCK_RECORD stub stands for; null for any other stub.
  Block* blockOf(const AcDbStub& record);
  /// Adds a block: BLOCK_RECORD, BLOCK and ENDBLK, the caller has put handles and owners.
  /// Before R13 there are no block records: recordBytes is left empty and the block's record
  /// is a stub without bytes.
  Block& appendBlock(const std::wstring& name, std::string recordBytes, std::uint64_t recordHandle,
                     std::string beginBytes, std::uint64_t beginHandle, std::string endBytes,
                     std::uint64_t endHandle);
  /// The OBJECTS records, file order.
  const std::vector<AcDbStub*>& objects() const { return m_objects; }

  // --- header variables ---------------------------------------------------------------
  /// The tags behind "$INSUNITS"; empty when the file does not set it.
  std::string_view headerVariable(std::string_view name) const;
  /// The names of those that were set since the drawing was read, in their order.
  std::vector<std::string> changedHeaderVariables() const;
  /// Replaces the value tags of a variable, or adds it at the end of the HEADER section.
  void setHeaderVariable(std::string_view name, std::string valueTags);

 private:
  friend class StoreLinker;
  friend class StoreLoader;
  friend class StoreWriter;
  struct Impl;

  /// Keeps the first hundred.
  void warn(std::size_t offset, const std::string& record, const std::string& text);
  std::uint16_t internKind(std::string_view name);
  AcDbStub* appendStub(Section section, Role role, std::string bytes, std::uint64_t handle);
  void makeTableHead(Table& table);
  std::unique_ptr<Impl> m_impl;
  std::unique_ptr<DrawingSource> m_source;
  Format m_format;
  std::deque<AcDbStub> m_stubs;
  std::deque<Table> m_tables;
  std::deque<Block> m_blocks;
  std::vector<AcDbStub*> m_objects;
  std::deque<std::string> m_kindNames;  // never moves: kindName() hands out views
  std::string m_fileName;
  std::string m_givenCodePage;
  std::vector<Warning> m_warnings;
};

}  // namespace quoin::dxf
