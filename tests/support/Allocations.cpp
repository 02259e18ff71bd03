#include "tests/support/Allocations.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace {

std::size_t gMade = 0;
std::size_t gFreed = 0;
bool gWatching = false;
void* gFirst = nullptr;
/// The allocations to go before one fails, and what to call then; null while none is to fail.
std::size_t gToGo = 0;
const std::function<void()>* gOnFailure = nullptr;
int gPauses = 0;

bool IsToFail() noexcept {
  if (gOnFailure == nullptr || gPauses > 0) return false;
  if (gToGo-- > 0) return false;
  const auto* const onFailure = std::exchange(gOnFailure, nullptr);
  (*onFailure)();
  return true;
}

void* TryAllocate(std::size_t size) noexcept {
  if (IsToFail()) return nullptr;
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
  static const std::function<void()> kNothing = [] {};
  gToGo = 0;
  gOnFailure = &kNothing;
}

Allocations::Failure::Failure(std::size_t number, std::function<void()> onFailure)
    : fOnFailure(std::move(onFailure)) {
  gToGo = number;
  gOnFailure = &fOnFailure;
}

Allocations::Failure::~Failure() {
  gOnFailure = nullptr;
}

Allocations::Pause::Pause() {
  ++gPauses;
}

Allocations::Pause::~Pause() {
  --gPauses;
}

}  // namespace usbinfo_test

// All forms of `new` and `delete` for ordinary alignment are replaced together, since a sanitizer's own would
// not match.
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
