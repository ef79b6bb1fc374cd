// Dictionaries, groups, layouts and other objects without a picture.
//
// Source: Open Design Specification for .dwg files, chapters of these objects.
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

/// `hasFlags`: R14 writes them for the class only that is newer.
void codeEntries(RecordCoder& coder, bool hasFlags) {
  constexpr int kCount = -301;
  constexpr int kUnknown = -302;
  const std::size_t entries = coder.countBL(kCount, 3);
  if (coder.version() == Version::R14 && !hasFlags) {
    coder.RC(kUnknown);
  }
  bool ownsHard = false;
  if (hasFlags) {
    coder.BS(281, 1);
    ownsHard = coder.RC(280) != 0;
  }
  for (std::size_t i = 0; i < entries && !coder.hasFailed(); ++i) {
    coder.TV(3);
    coder.H(ownsHard ? 360 : 350, ownsHard ? kHardOwner : kSoftOwner);
  }
}

void codeDictionary(RecordCoder& coder, const DrawingFacts&) {
  codeEntries(coder, coder.since(Version::R2000));
}

void codeDictionaryWithDefault(RecordCoder& coder, const DrawingFacts&) {
  codeEntries(coder, true);
  coder.H(340, kHardPointer);
}

void codeDictionaryVariable(RecordCoder& coder, const DrawingFacts&) {
  coder.RC(280);
  coder.TV(1);
}

void codePlaceholder(RecordCoder&, const DrawingFacts&) {}

void codeGroup(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kCount = -311;
  coder.TV(300);
  coder.BS(70);
  coder.BS(71);
  const std::size_t members = coder.countBL(kCount, 340);
  for (std::size_t i = 0; i < members && !coder.hasFailed(); ++i) {
    coder.H(340, kHardPointer);
  }
}

void codeScale(RecordCoder& coder, const DrawingFacts&) {
  coder.BS(70);
  coder.TV(300);
  coder.BD(140);
  coder.BD(141);
  coder.B(290);
}

constexpr Kind kKinds[] = {
    {42, "DICTIONARY", Family::Object, codeDictionary, "@AcDbDictionary 280?0 281 ( 3 350 360 )"},
    {0, "ACDBDICTIONARYWDFLT", Family::Object, codeDictionaryWithDefault,
     "@AcDbDictionary 280?0 281 ( 3 350 360 ) @AcDbDictionaryWithDefault 340"},
    {0, "DICTIONARYVAR", Family::Object, codeDictionaryVariable, "@DictionaryVariables 280 1"},
    {80, "ACDBPLACEHOLDER", Family::Object, codePlaceholder, ""},
    {72, "GROUP", Family::Object, codeGroup, "@AcDbGroup 300 70 71 ( 340 )"},
    {0, "SCALE", Family::Object, codeScale, "@AcDbScale 70 300 140 141 290"},
};

}  // namespace

std::span<const Kind> objectKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
