#include "embedded/dwg/container/ReedSolomon.h"

#include <array>

namespace quoin::dwg::container {
namespace {

// The field of 256 elements of either kind of code word; its element 2 generates all others. A word
// is a polynomial, the first byte its constant, that is 0 at 2^1, 2^2, ... up to the number of its
// check bytes.
constexpr unsigned kSystemField = 0x169;
constexpr unsigned kPageField = 0x11D;

/// What multiplying by an element of the field gives, for every byte.
using Multiples = std::array<unsigned char, 256>;

Multiples multiplesOf(unsigned factor, unsigned field) {
  Multiples multiples{};
  for (unsigned byte = 0; byte < multiples.size(); ++byte) {
    unsigned product = 0;
    unsigned shifted = byte;
    for (unsigned rest = factor; rest != 0; rest >>= 1) {
      product ^= (rest & 1) != 0 ? shifted : 0;
      shifted = (shifted & 0x80) != 0 ? shifted << 1 ^ field : shifted << 1;
    }
    multiples[byte] = static_cast<unsigned char>(product);
  }
  return multiples;
}

/// Whether all words are 0 at the element that these are the multiples of.
bool areZero(std::string_view encoded, std::size_t words, const Multiples& multiples) {
  std::string values(words, '\0');
  for (std::size_t i = kCodeWordSize; i-- > 0;) {
    for (std::size_t word = 0; word < words; ++word) {
      const unsigned char raised = multiples[static_cast<unsigned char>(values[word])];
      values[word] =
          static_cast<char>(raised ^ static_cast<unsigned char>(encoded[i * words + word]));
    }
  }
  return values.find_first_not_of('\0') == std::string::npos;
}

}  // namespace

Decoded decodeReedSolomon(std::string_view encoded, std::size_t words, std::size_t dataSize) {
  Decoded decoded;
  decoded.data.reserve(words * dataSize);
  for (std::size_t word = 0; word < words; ++word) {
    for (std::size_t i = 0; i < dataSize; ++i) {
      decoded.data.push_back(encoded[i * words + word]);
    }
  }
  const unsigned field = dataSize == kSystemDataSize ? kSystemField : kPageField;
  const Multiples doubled = multiplesOf(2, field);
  unsigned element = 1;
  for (std::size_t check = dataSize; check < kCodeWordSize && decoded.isRight; ++check) {
    element = doubled[element];
    decoded.isRight = areZero(encoded, words, multiplesOf(element, field));
  }
  return decoded;
}

}  // namespace quoin::dwg::container
