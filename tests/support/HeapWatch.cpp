#include "support/HeapWatch.h"

void* operator new(std::size_t size) {
  void* const memory = quoin::test::HeapWatch::allocate(size);
  if (!memory) {
    throw std::bad_alloc();
  }
  return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return quoin::test::HeapWatch::allocate(size);
}
void operator delete(void* memory) noexcept {
  quoin::test::HeapWatch::release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  quoin::test::HeapWatch::release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  quoin::test::HeapWatch::release(memory);
}
