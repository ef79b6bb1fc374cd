// The variables of a drawing's header: the contents of the section as DXF tags and back. A section
// whose own bits come back from what was read may be changed; any other one is only read.
//
// Source: Open Design Specification for .dwg files, "Data section AcDb:Header".
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "embedded/dwg/records/DrawingFacts.h"
#include "embedded/dwg/records/RecordValues.h"
#include "embedded/dxf/Format.h"
#include "hostapi.h"

namespace quoin::dwg {

struct SpelledVariable;
struct StoredVariable;

/// What only the header knows; 0 where the version has none.
struct HeaderHandles {
  std::uint64_t seed = 0;  // the next handle that is free

  std::uint64_t blockControl = 0;
  std::uint64_t layerControl = 0;
  std::uint64_t styleControl = 0;
  std::uint64_t linetypeControl = 0;
  std::uint64_t viewControl = 0;
  std::uint64_t ucsControl = 0;
  std::uint64_t viewportControl = 0;
  std::uint64_t applicationControl = 0;
  std::uint64_t dimensionStyleControl = 0;
  std::uint64_t viewportEntityControl = 0;  // up to R2000

  std::uint64_t namedObjects = 0;  // the root of the dictionaries, and some of its entries
  std::uint64_t groups = 0;
  std::uint64_t multilineStyles = 0;
  std::uint64_t layouts = 0;
  std::uint64_t plotSettings = 0;
  std::uint64_t plotStyles = 0;
  std::uint64_t materials = 0;
  std::uint64_t colors = 0;
  std::uint64_t visualStyles = 0;

  std::uint64_t modelSpace = 0;  // block headers
  std::uint64_t paperSpace = 0;
  std::uint64_t byLayerLinetype = 0;
  std::uint64_t byBlockLinetype = 0;
  std::uint64_t continuousLinetype = 0;

  std::uint64_t currentLayer = 0;
  std::uint64_t currentTextStyle = 0;
  std::uint64_t currentLinetype = 0;
  std::uint64_t currentDimensionStyle = 0;
  std::uint64_t currentMultilineStyle = 0;
  std::uint64_t currentMaterial = 0;
};

/// Variables of DXF that DWG keeps elsewhere.
struct OutsideVariables {
  int maintenance = 0;           // $ACADMAINTVER
  std::wstring lastSavedBy;      // $LASTSAVEDBY: of the summary
  std::int64_t measurement = 0;  // $MEASUREMENT: of the template
};

class HOST_API HeaderSection {
 public:
  /// Reads the variables. `contents` is the section without its frame (marks, sizes, checksum),
  /// from R2007 on beginning with its size in bits.
  /// Fails: false where it ends too early or cannot be read; there are no variables then.
  bool read(std::string_view contents, dxf::Version version, const os::CodePage& codePage);

  const HeaderHandles& handles() const { return m_handles; }
  /// Whether nothing is left that no variable accounts for, and writing what was read gave the
  /// very bits again, so that it may be changed.
  bool isExact() const { return m_isExact; }

  /// Appends group 9 with the name and the value's tags of all variables, in the order of a DXF
  /// file of that version. Names of layers, linetypes, text and dimension styles, coordinate
  /// systems
  /// ("UCS") and blocks are those of `facts`; so are those of multiline styles ("MLINESTYLE"), by
  /// the keys that their dictionary has for them.
  /// From R2000 on DWG has the times of making and saving as universal time alone; $TDCREATE and
  /// $TDUPDATE, which are local in DXF, say the same as $TDUCREATE and $TDUUPDATE then.
  void writeTags(const DrawingFacts& facts, const OutsideVariables& outside,
                 std::string& bytes) const;
  /// Gives a variable ("$INSUNITS") the value of its DXF tags (group 70 of 4).
  /// Fails: false, nothing changed, for a section that is not exact, for a variable that DWG does
  /// not have here, and for a value that it cannot have.
  bool set(std::string_view name, std::string_view tags, const DrawingFacts& facts);
  /// The next handle that is free. Fails: false for a section that is not exact.
  bool setSeed(std::uint64_t handle);

  /// The contents; with nothing set those that were read. "" for a section that is not exact.
  std::string write() const;

 private:
  std::string encoded(const RecordValues& values) const;
  bool become(const RecordValues& values);
  RecordValues shown(const SpelledVariable& variable, const StoredVariable& stored,
                     const DrawingFacts& facts) const;
  bool showOutside(const SpelledVariable& variable, const DrawingFacts& facts,
                   const OutsideVariables& outside, RecordValues& values) const;
  bool store(const SpelledVariable& variable, const StoredVariable& stored,
             const RecordValues& fresh, const DrawingFacts& facts, RecordValues& values) const;
  std::uint64_t handleOf(std::string_view name) const;
  void readHandles();

  dxf::Version m_version = dxf::Version::Unknown;
  const os::CodePage* m_codePage = nullptr;
  RecordValues m_values;
  HeaderHandles m_handles;
  bool m_isExact = false;
};

}  // namespace quoin::dwg
