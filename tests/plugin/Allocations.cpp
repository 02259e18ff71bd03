// The counting operators; see the header. All forms of `new` and `delete` for ordinary alignment are replaced
// together, since a sanitizer's own would not match.
#include "tests/plugin/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

std::size_t gMade = 0;
std::size_t gFreed = 0;
bool gWatching = false;
void* gFirst = nullptr;
bool gFailNext = false;

void* TryAllocate(std::size_t size) noexcept {
  if (gFailNext) {
    gFailNext = false;
    return nullptr;
  }
  void* const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) return nullptr;
  ++gMade;
  if (gWatching) {
    gWatching = false;
    gFirst = block;
  }
  return block;
}

void* Allocate(std::size_t size) {
  void* const block = TryAllocate(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void Free(void* block) noexcept {
  if (block == nullptr) return;
  ++gFreed;
  std::free(block);
}

}  // namespace

namespace usbinfo_test {

std::size_t Allocations::Live() {
  return gMade - gFreed;
}

std::size_t Allocations::Made() {
  return gMade;
}

void Allocations::WatchForFirst() {
  gWatching = true;
  gFirst = nullptr;
}

void* Allocations::First() {
  return gFirst;
}

void Allocations::FailNext() {
  gFailNext = true;
}

}  // namespace usbinfo_test

void* operator new(std::size_t size) {
  return Allocate(size);
}

void* operator new[](std::size_t size) {
  return Allocate(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return TryAllocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return TryAllocate(size);
}

void operator delete(void* block) noexcept {
  Free(block);
}

void operator delete[](void* block) noexcept {
  Free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  Free(block);
}

void operator delete[](void* block, std::size_t) noexcept {
  Free(block);
}

void operator delete(void* block, const std::nothrow_t&) noexcept {
  Free(block);
}

void operator delete[](void* block, const std::nothrow_t&) noexcept {
  Free(block);
}
