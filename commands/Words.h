// Numbers and counts in words for people: no digit is lost, and one is one.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "gepnt3d.h"

namespace quoin::commands {

/// The shortest text that reads back as the same number, "0" for either zero.
std::string numberText(double value);
/// "X,Y", as --at and its like take it.
std::string pointText(const AcGePoint3d& point);
/// "1 wall line", "2 wall lines"; for words that take more than an s: countText(n, "entity",
/// "entities").
std::string countText(std::size_t count, const std::string& one, const std::string& many = "");

/// "3 ARC, 12 LINE", from counts of kinds of entities.
std::string kindsText(const std::map<std::wstring, std::size_t>& countOfKind);

/// A field of a table with commas between fields, in quotes where it needs them (RFC 4180).
std::string csvField(const std::string& text);

}  // namespace quoin::commands
