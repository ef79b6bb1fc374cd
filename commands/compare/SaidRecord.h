// A record of a drawing as what it says, however it is spelled: without handles, owners and
// markers, defaults left out, names in one letter case, points as points. Two records that say the
// same are equal here, whichever program, version or format wrote them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "embedded/dxf/RecordStore.h"
#include "gevec3d.h"

namespace quoin::commands {

/// One thing that a record says.
struct Said {
  enum class Type : std::uint8_t {
    Text,
    Number,
    Length,
    Point,  // goes along where the entity is moved
    Vector  // does not
  };
  int code = 0;
  std::uint32_t part = 0;  // 0 for the entity itself, then its vertices or attributes
  Type type = Type::Text;
  double x = 0.0;  // the number
  double y = 0.0;
  double z = 0.0;
  std::string text;  // UTF-8
};

struct SaidRecord {
  std::string kind;
  std::vector<Said> said;  // in one order
  AcGeVector3d normal = AcGeVector3d::kZAxis;
  /// Points are those of the plane of `normal`.
  bool isInPlane = false;
  bool isFromDwg = false;
};

/// Codes beyond those of files: a vertex's widths and bulge, a layer's states, and what an embedded
/// object says.
inline constexpr int kVertexCode = 2000;
inline constexpr int kOffCode = 2001;
inline constexpr int kFrozenCode = 2002;
inline constexpr int kLockedCode = 2003;
inline constexpr int kEmbeddedCodes = 3000;

/// Reads records of one drawing, which must outlive it.
class RecordReader {
 public:
  explicit RecordReader(const dxf::RecordStore& store) : m_store(store) {}

  /// What an entity or a table record says, parts included. Bytes that are no tags say nothing.
  void read(const AcDbStub& stub, SaidRecord& record);
  /// The layer of an entity, without reading the rest.
  std::string layerOf(const AcDbStub& stub) const;
  /// The text of the first tag with this code behind that marker, or of the whole record.
  std::string textOf(const AcDbStub& stub, int code, std::string_view marker = {}) const;
  /// The handle of such a tag; 0 for none.
  std::uint64_t handleIn(const AcDbStub& stub, int code, std::string_view marker) const;
  /// How far from the origin its first point is, by its largest coordinate; 0 for none.
  double firstCoordinate(const AcDbStub& stub) const;
  static std::string utf8Of(std::wstring_view text);
  /// What a handle names: "LAYER A-WALL", "MATERIAL Brick"; "" for nothing.
  std::string nameOf(std::uint64_t handle);
  /// How many decimals the file's numbers show at most; many where they are no texts.
  int decimals() const;

 private:
  void readTags(const AcDbStub& stub, std::uint32_t part, SaidRecord& record);
  bool find(const AcDbStub& stub, int code, std::string_view marker, dxf::TagView& tag) const;
  std::string decoded(const dxf::TagView& tag) const;
  std::string foundName(std::uint64_t handle) const;

  const dxf::RecordStore& m_store;
  std::unordered_map<std::uint64_t, std::string> m_names;
};

/// What a number or a text stands for that a record of this kind does not say; 0 and "" for most.
double defaultNumber(std::string_view kind, int code);
std::string_view defaultText(std::string_view kind, int code);
/// The letters of a name in one case.
std::string foldedName(const std::string& name);
/// Whether it is the name of a block that belongs to what shows it, "*D12"; layouts are none.
bool isAnonymous(const std::string& blockName);

}  // namespace quoin::commands
