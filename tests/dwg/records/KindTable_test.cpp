// The table of kinds in docs/dwg.md is what the rows say.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <string>

#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

constexpr const char* kBegin = "<!-- kinds: begin -->\n";
constexpr const char* kEnd = "<!-- kinds: end -->\n";

std::string familyOf(const Kind& kind) {
  switch (kind.family) {
    case Family::Entity:
      return "entity";
    case Family::TableRecord:
      return "table record";
    case Family::Table:
      return "table";
    default:
      return "object";
  }
}

/// Whether new records of the kind are made: RecordCodec and DwgChanges refuse those that are not.
std::string madeOf(const Kind& kind) {
  const std::string_view name = kind.name;
  if (kind.isPartial || kind.family == Family::Table || name == "BLOCK_RECORD" || name == "BLOCK" ||
      name == "ENDBLK") {
    return "no";
  }
  return kind.type == 0 ? "where the drawing has the class" : "yes";
}

struct Row {
  const Kind* kind = nullptr;
  std::set<std::uint16_t> types;
};

/// One line a name: what it is, the object types that have the name, and what can be done.
std::string table() {
  std::map<std::string, Row> rows;
  for (const Kind* kind : allKinds()) {
    Row& row = rows[kind->name];
    row.kind = kind;
    row.types.insert(kind->type);
  }
  std::ostringstream text;
  text << "| kind | what it is | object types | read | changed | made |\n"
          "|---|---|---|---|---|---|\n";
  for (const auto& [name, row] : rows) {
    text << "| " << name << " | " << familyOf(*row.kind) << " | ";
    const char* comma = "";
    for (const std::uint16_t type : row.types) {
      text << comma << (type == 0 ? "a class" : std::to_string(type));
      comma = ", ";
    }
    text << " | " << (row.kind->isPartial ? "in part" : "yes") << " | "
         << (row.kind->family == Family::Table ? "its list" : "yes") << " | " << madeOf(*row.kind)
         << " |\n";
  }
  return text.str();
}

TEST(KindTable, TheDocumentHasTheRowsOfTheProgram) {
  const std::string path = std::string(QUOIN_SOURCE_DIR) + "/docs/dwg.md";
  std::ifstream file(path);
  std::string document((std::istreambuf_iterator<char>(file)), {});
  const std::size_t begin = document.find(kBegin);
  const std::size_t end = document.find(kEnd);
  ASSERT_NE(begin, std::string::npos);
  ASSERT_NE(end, std::string::npos);
  const std::size_t from = begin + std::string(kBegin).size();
  if (std::getenv("QUOIN_WRITE_DOCS") != nullptr) {
    document.replace(from, end - from, table());
    std::ofstream(path) << document;
    return;
  }
  EXPECT_EQ(document.substr(from, end - from), table())
      << "QUOIN_WRITE_DOCS=1 build/dev/bin/test_dwg --gtest_filter='KindTable.*' writes it";
}

TEST(KindTable, EachObjectTypeHasOneRow) {
  std::set<std::uint16_t> types;
  for (const Kind* kind : allKinds()) {
    EXPECT_TRUE(kind->type == 0 || types.insert(kind->type).second) << kind->name;
    EXPECT_NE(kind->code, nullptr) << kind->name;
  }
}

}  // namespace
}  // namespace quoin::dwg
