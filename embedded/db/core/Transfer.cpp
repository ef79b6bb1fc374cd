#include "embedded/db/core/Transfer.h"

#include <algorithm>
#include <array>

#include "dbents.h"
#include "embedded/db/core/RecordKinds.h"
#include "embedded/dxf/FileError.h"
#include "embedded/os/Utf8.h"

namespace quoin::db {
namespace {

using dxf::Version;

/// The first version that knows a tag which all entities share.
Version firstVersionOfCommon(int code) {
  switch (code) {
    case code::kLinetypeScale:
    case code::kVisibility:
      return Version::R13;
    case code::kLineWeight:
    case code::kPlotStyle:
    case code::kLayoutName:
    case 92:   // a preview's size
    case 310:  // and its bytes
      return Version::R2000;
    case code::kTrueColor:
    case code::kColorName:
    case code::kTransparency:
      return Version::R2004;
    case code::kMaterial:
    case code::kVisualStyle:
    case code::kShadow:
      return Version::R2007;
    case 160:  // a preview's size, wide
      return Version::R2010;
    default:
      return Version::R10;
  }
}

/// The same for tags of records that are no entities.
Version firstVersionOfRecord(std::string_view kind, int code) {
  struct Entry {
    std::string_view kind;
    int code;
    Version since;
  };
  constexpr std::array kEntries{Entry{"LAYER", 290, Version::R2000},
                                Entry{"LAYER", code::kLineWeight, Version::R2000},
                                Entry{"LAYER", code::kPlotStyle, Version::R2000},
                                Entry{"LAYER", code::kTrueColor, Version::R2004},
                                Entry{"LAYER", code::kColorName, Version::R2004},
                                Entry{"LAYER", code::kMaterial, Version::R2007},
                                Entry{"LAYER", code::kVisualStyle, Version::R2007},
                                Entry{"MLINESTYLE", code::kTrueColor, Version::R2004},
                                Entry{"MLINESTYLE", code::kColorName, Version::R2004},
                                Entry{"DICTIONARY", 280, Version::R2000},
                                Entry{"DICTIONARY", 281, Version::R2000}};
  for (const Entry& entry : kEntries) {
    if (entry.code == code && entry.kind == kind) {
      return entry.since;
    }
  }
  return Version::R10;
}

[[noreturn]] void refuse(const TagList& source, const std::string& cause) {
  throw dxf::FileError(Acad::eIllegalEntityType,
                       std::string(dxf::trimmedValue(source[0])) + ": " + cause);
}

class Transferrer {
 public:
  Transferrer(const TagList& source, const dxf::Format& target, const Placement& placement)
      : m_source(source),
        m_target(target),
        m_placement(placement),
        m_handleTag(source.handleTag()),
        m_ownerTag(source.ownerTag()),
        m_isRaw(isSameSpelling(source.format(), target)) {}

  std::string run() {
    if (m_source.size() == 0) {
      throw dxf::FileError(Acad::eInvalidInput, "the record is empty");
    }
    const std::string_view kind = dxf::trimmedValue(m_source[0]);
    const bool isSameVersion = m_source.format().version == m_target.version;
    const RecordKind* const row = kindOf(m_source);
    if (!isSameVersion && row && row->since > m_target.version) {
      refuse(m_source, "drawings of " + std::string(dxf::releaseName(m_target.version)) +
                           " have no such entity");
    }
    m_result.reserve(m_source.bytes().size() + kHeadRoom);
    put(0);
    putHead(kind);
    const bool isEntity = m_source.find(code::kLayer, m_source.body()) != TagList::kNone;
    if (m_target.hasSubclassMarkers() && !m_source.hasMarkers()) {
      putBodyWithNewMarkers(row);
    } else {
      putBody(kind, isEntity);
    }
    for (std::size_t i = m_source.body().last; i < m_source.size(); ++i) {
      put(i);
    }
    return std::move(m_result);
  }

 private:
  static constexpr std::size_t kHeadRoom = 64;

  void put(std::size_t index) {
    const dxf::TagView& tag = m_source[index];
    if (m_isRaw) {
      m_result += m_source.bytes().substr(tag.begin, tag.end - tag.begin);
    } else {
      dxf::putTranscoded(m_result, tag, m_source.format(), m_target);
    }
  }

  void putHead(std::string_view kind) {
    if (m_placement.handle != 0) {
      const int handleCode = kind == "DIMSTYLE" ? code::kDimStyleHandle : code::kHandle;
      dxf::putHandle(m_result, handleCode, m_placement.handle, m_target);
    }
    m_result += m_placement.groups;
    if (m_placement.owner != 0 && m_target.hasOwners()) {
      dxf::putHandle(m_result, code::kOwner, m_placement.owner, m_target);
    }
  }

  /// Head tags that a record does not take along: handle, owner, application groups.
  bool isOfHead(std::size_t index) const {
    if (index == m_handleTag || index == m_ownerTag) {
      return true;
    }
    return index < m_source.head().last && !m_source.isOwn(index) &&
           m_source[index].code != kMarkerCode;
  }

  bool isSpaceTag(int code) const {
    return m_placement.space != Placement::Space::Keep &&
           (code == code::kPaperSpace || code == code::kLayoutName);
  }

  void putSpace() {
    if (m_placement.space == Placement::Space::Paper) {
      dxf::putInteger(m_result, code::kPaperSpace, 1, m_target);
    }
  }

  void putBody(std::string_view kind, bool isEntity) {
    const TagRange common = isEntity ? layout::kEntity.in(m_source) : TagRange{};
    bool isSpacePut = !isEntity;
    for (std::size_t i = m_source.body().first; i < m_source.body().last; ++i) {
      if (isOfHead(i)) {
        continue;
      }
      const int code = m_source[i].code;
      const bool isMarker = code == kMarkerCode;
      if (isMarker && !m_target.hasSubclassMarkers()) {
        continue;
      }
      const bool isCommon = isEntity && m_source.isIn(i, common);
      if (!isSpacePut && i >= common.first && (isCommon || i >= common.last)) {
        putSpace();
        isSpacePut = true;
      }
      if (isCommon && (isSpaceTag(code) || firstVersionOfCommon(code) > m_target.version)) {
        continue;
      }
      if (!isEntity && m_source.isOwn(i) && firstVersionOfRecord(kind, code) > m_target.version) {
        continue;
      }
      put(i);
    }
  }

  /// For records of drawings that have no markers: every tag under the subclass that takes it.
  void putBodyWithNewMarkers(const RecordKind* kind) {
    const ClassRow* const row = kind ? classOf(*kind, m_source) : nullptr;
    if (!row || row->subclasses.empty()) {
      refuse(m_source, "its subclasses are not known");
    }
    const std::span<const Subclass> subclasses = row->subclasses;
    const auto takerOf = [&](int code) {
      std::size_t rest = subclasses.size() - 1;
      for (std::size_t i = 0; i < subclasses.size(); ++i) {
        const std::span<const int> codes = subclasses[i].codes;
        if (std::find(codes.begin(), codes.end(), code) != codes.end()) {
          return i;
        }
        rest = codes.empty() ? i : rest;
      }
      return rest;
    };
    for (std::size_t which = 0; which < subclasses.size(); ++which) {
      dxf::putAscii(m_result, kMarkerCode, subclasses[which].marker, m_target);
      if (which == 0) {
        putSpace();
      }
      for (std::size_t i = m_source.body().first; i < m_source.body().last; ++i) {
        if (!isOfHead(i) && takerOf(m_source[i].code) == which && !isSpaceTag(m_source[i].code)) {
          put(i);
        }
      }
    }
  }

  const TagList& m_source;
  const dxf::Format& m_target;
  const Placement& m_placement;
  // Looked up once: a record without them is searched to its end.
  std::size_t m_handleTag;
  std::size_t m_ownerTag;
  bool m_isRaw;
  std::string m_result;
};

}  // namespace

bool isSameSpelling(const dxf::Format& a, const dxf::Format& b) {
  const bool sameText =
      a.textIsUtf8() == b.textIsUtf8() && (a.textIsUtf8() || a.codePage == b.codePage);
  return a.form == b.form && sameText && a.narrowGroupCodes == b.narrowGroupCodes &&
         a.lineEnd == b.lineEnd && a.groupCodeColumns == b.groupCodeColumns;
}

std::string transferred(const TagList& source, const dxf::Format& target,
                        const Placement& placement) {
  return Transferrer(source, target, placement).run();
}

std::string headless(const TagList& source) {
  return transferred(source, source.format(), {});
}

}  // namespace quoin::db
