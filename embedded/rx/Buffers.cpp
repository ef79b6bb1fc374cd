#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "acutmem.h"
#include "adscodes.h"

void* acutAllocateBuffer(std::size_t bytes) {
  return bytes > 0 ? std::malloc(bytes) : nullptr;
}

void acutFreeBuffer(void* buffer) {
  std::free(buffer);
}

Acad::ErrorStatus acutNewString(const ACHAR* text, ACHAR*& copy) {
  copy = nullptr;
  if (!text) {
    return Acad::eInvalidInput;
  }
  const std::size_t bytes = (std::wcslen(text) + 1) * sizeof(ACHAR);
  const Acad::ErrorStatus status = acutNewBuffer(copy, bytes);
  if (status == Acad::eOk) {
    std::memcpy(copy, text, bytes);
  }
  return status;
}

Acad::ErrorStatus acutUpdString(const ACHAR* text, ACHAR*& copy) {
  ACHAR* const before = copy;
  Acad::ErrorStatus status = Acad::eOk;
  if (text) {
    status = acutNewString(text, copy);  // first, since it may be a copy of itself
  } else {
    copy = nullptr;
  }
  acutFreeBuffer(before);
  return status;
}

resbuf* acutNewRb(int type) {
  auto* const buffer = static_cast<resbuf*>(std::calloc(1, sizeof(resbuf)));
  if (buffer) {
    buffer->restype = static_cast<short>(type);
  }
  return buffer;
}

namespace {

// Group codes of extended data: texts in 1000-1003 and 1005, binary chunks in 1004.
constexpr short kBinaryChunk = 1004;

bool holdsText(short type) {
  const bool isDxfText = (type >= 0 && type <= 9) || (type >= 100 && type <= 102) ||
                         (type >= 300 && type <= 309) || (type >= 1000 && type <= 1003) ||
                         type == 1005;
  return type == RTSTR || isDxfText;
}

}  // namespace

int acutRelRb(resbuf* list) {
  if (!list) {
    return RTERROR;
  }
  while (list) {
    resbuf* const next = list->rbnext;
    if (holdsText(list->restype)) {
      std::free(list->resval.rstring);
    } else if (list->restype == kBinaryChunk) {
      std::free(list->resval.rbinary.buf);
    }
    std::free(list);
    list = next;
  }
  return RTNORM;
}
