#include "embedded/dwg/records/Kinds.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

namespace quoin::dwg {
namespace {

constexpr std::size_t kFixedTypes = 500;

struct Tables {
  std::array<const Kind*, kFixedTypes> byType{};
  std::unordered_map<std::string_view, std::vector<const Kind*>> byName;
  std::vector<const Kind*> all;

  Tables() {
    for (const auto kinds : {curveKinds(), polylineKinds(), textKinds(), blockKinds(), fillKinds(),
                             hatchKinds(), dimensionKinds(), leaderKinds(), multilineKinds(),
                             viewportKinds(), imageKinds(), tableKinds(), dimensionStyleKinds(),
                             layoutKinds(), freeRecordKinds(), blockDataKinds(), objectKinds()}) {
      for (const Kind& kind : kinds) {
        if (kind.type != 0) {
          byType.at(kind.type) = &kind;
        }
        byName[kind.name].push_back(&kind);
        all.push_back(&kind);
      }
    }
  }
};

const Tables& tables() {
  static const Tables kTables;
  return kTables;
}

}  // namespace

const std::vector<const Kind*>& allKinds() {
  return tables().all;
}

const Kind* kindOfType(std::uint16_t type) {
  return type < kFixedTypes ? tables().byType[type] : nullptr;
}

const Kind* kindOfClass(std::string_view dxfName) {
  const auto found = tables().byName.find(dxfName);
  return found == tables().byName.end() ? nullptr : found->second.front();
}

std::vector<const Kind*> kindsNamed(std::string_view dxfName) {
  const auto found = tables().byName.find(dxfName);
  return found == tables().byName.end() ? std::vector<const Kind*>() : found->second;
}

std::string_view nameOfType(std::uint16_t type) {
  switch (type) {
    case 37:
      return "REGION";
    case 38:
      return "3DSOLID";
    case 39:
      return "BODY";
    case 43:
      return "OLEFRAME";
    case 74:
      return "OLE2FRAME";
    case 81:
      return "VBA_PROJECT";
    case 498:
      return "ACAD_PROXY_ENTITY";
    case 499:
      return "ACAD_PROXY_OBJECT";
    default:
      return {};
  }
}

void codeOwned(RecordCoder& coder, std::size_t count) {
  if (coder.since(dxf::Version::R2004)) {
    for (std::size_t i = 0; i < count && !coder.hasFailed(); ++i) {
      coder.H(kOwned, kHardOwner);
    }
  } else {
    coder.H(kFirstOwned, kSoftPointer);
    coder.H(kLastOwned, kSoftPointer);
  }
  coder.H(kSequenceEnd, kHardOwner);
}

}  // namespace quoin::dwg
