// Buffers and texts that the host and modules hand to each other. Whoever receives one frees
// it with the function of the same family; std::free does for texts.
#pragma once

#include <cstddef>

#include "acadstrc.h"
#include "adsdef.h"

/// A new buffer of this many bytes; null when memory runs out or for 0.
HOST_API void* acutAllocateBuffer(std::size_t bytes);
/// Frees a buffer or text; null does nothing.
HOST_API void acutFreeBuffer(void* buffer);

/// Makes a new buffer.
/// Fails: eOutOfMemory; the pointer is null then.
template <class T>
Acad::ErrorStatus acutNewBuffer(T*& buffer, std::size_t bytes) {
  buffer = static_cast<T*>(acutAllocateBuffer(bytes));
  return buffer ? Acad::eOk : Acad::eOutOfMemory;
}

/// Frees a buffer and sets the pointer to null.
template <class T>
void acutDelBuffer(T*& buffer) {
  acutFreeBuffer(buffer);
  buffer = nullptr;
}

/// A copy of a text in a new buffer.
/// Fails: eInvalidInput (null text), eOutOfMemory; the output is null then.
HOST_API Acad::ErrorStatus acutNewString(const ACHAR* text, ACHAR*& copy);

/// Frees a text and sets the pointer to null.
inline void acutDelString(ACHAR*& text) {
  acutDelBuffer(text);
}

/// Replaces a text by a copy of another; a null text frees it.
HOST_API Acad::ErrorStatus acutUpdString(const ACHAR* text, ACHAR*& copy);

/// A new result buffer of this type with no link and a zero value.
HOST_API resbuf* acutNewRb(int type);
/// Frees a whole list of result buffers with the texts and binary chunks in it.
/// Fails: RTERROR for null.
HOST_API int acutRelRb(resbuf* list);
