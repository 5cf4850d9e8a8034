#include "tests/support/failing_alloc.h"

#include <dlfcn.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace lm::test {
namespace {

struct Counters {
  bool armed = false;
  Reach reach = Reach::own;
  std::uint64_t failAt = 0;
  std::uint64_t requests = 0;
  Request refused = Request::none;
  std::int64_t live = 0;
  std::array<const void*, 4096> planes{};  // blocks that only free() releases
  std::size_t numPlanes = 0;
};
Counters counters;

// The array and non-throwing forms of the C++ library call its plain form, which comes back here; such calls
// are not requests of the program.
bool forwarding = false;

class Forwarding {
 public:
  Forwarding() : outer_(forwarding) { forwarding = true; }
  ~Forwarding() { forwarding = outer_; }
  Forwarding(const Forwarding&) = delete;
  Forwarding& operator=(const Forwarding&) = delete;

 private:
  bool outer_;
};

bool refuses(Request kind) {
  if (!counters.armed || forwarding) return false;
  if (++counters.requests != counters.failAt) return false;
  counters.refused = kind;
  return true;
}

// The address sanitizer ends the program if a plain operator new throws.
bool isAbsurd(std::size_t size) { return size > PTRDIFF_MAX; }

void countBlock(std::int64_t change) {
  if (counters.armed && !forwarding) counters.live += change;
}

// The original of a replaced function: the sanitizer's if present, which then still sees every block.
template <typename Function>
Function* original(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

template <typename... Arguments>
void* allocate(void* (*next)(std::size_t, Arguments...), std::size_t size, Arguments... arguments) {
  const Forwarding scope;
  return next(size, arguments...);
}

template <typename... Arguments>
void giveBack(void (*next)(void*, Arguments...), void* block, Arguments... arguments) {
  if (block != nullptr) countBlock(-1);
  const Forwarding scope;
  next(block, arguments...);
}

#ifndef __SANITIZE_ADDRESS__
void rememberPlane(const void* block) {
  if (!counters.armed || counters.numPlanes == counters.planes.size()) return;
  counters.planes[counters.numPlanes++] = block;
  ++counters.live;
}

void forgetPlane(const void* block) {
  for (std::size_t i = 0; i < counters.numPlanes; ++i) {
    if (counters.planes[i] != block) continue;
    counters.planes[i] = counters.planes[--counters.numPlanes];
    --counters.live;
    return;
  }
}

bool reachesPlain() { return counters.armed && counters.reach == Reach::all && !forwarding; }
bool refusesPlain() { return reachesPlain() && refuses(Request::plain); }
void* rememberPlain(void* block) {
  if (block != nullptr && reachesPlain()) rememberPlane(block);
  return block;
}
#else
void rememberPlane(const void*) {}
#endif

}  // namespace

FailingAlloc::FailingAlloc(std::uint64_t failAt, Reach reach) {
  counters = Counters{};
  counters.reach = reach;
  counters.failAt = failAt;
  counters.armed = true;
}
FailingAlloc::~FailingAlloc() {
  counters.armed = false;
  counters.numPlanes = 0;
}
void FailingAlloc::stopFailing() { counters.failAt = 0; }
std::uint64_t FailingAlloc::requests() const { return counters.requests; }
Request FailingAlloc::refused() const { return counters.refused; }
std::int64_t FailingAlloc::live() const { return counters.live; }

}  // namespace lm::test

using namespace lm::test;

// ---- the replaced functions, under their names in the object files ------------------------------

// std::size_t in these names.
#if __SIZEOF_SIZE_T__ == 8
#define SIZE "m"
#else
#define SIZE "j"
#endif

void* operator new(std::size_t size) {
  static auto* const next = original<void*(std::size_t)>("_Znw" SIZE);
  if (isAbsurd(size) || refuses(Request::throwingNew)) throw std::bad_alloc();
  void* block = allocate(next, size);
  countBlock(1);
  return block;
}
void* operator new[](std::size_t size) {
  static auto* const next = original<void*(std::size_t)>("_Zna" SIZE);
  if (isAbsurd(size) || refuses(Request::throwingNew)) throw std::bad_alloc();
  void* block = allocate(next, size);
  countBlock(1);
  return block;
}
void* operator new(std::size_t size, const std::nothrow_t& quiet) noexcept {
  static auto* const next = original<void*(std::size_t, const std::nothrow_t&)>("_Znw" SIZE "RKSt9nothrow_t");
  if (refuses(Request::quietNew)) return nullptr;
  void* block = allocate<const std::nothrow_t&>(next, size, quiet);
  if (block != nullptr) countBlock(1);
  return block;
}
void* operator new[](std::size_t size, const std::nothrow_t& quiet) noexcept {
  static auto* const next = original<void*(std::size_t, const std::nothrow_t&)>("_Zna" SIZE "RKSt9nothrow_t");
  if (refuses(Request::quietNew)) return nullptr;
  void* block = allocate<const std::nothrow_t&>(next, size, quiet);
  if (block != nullptr) countBlock(1);
  return block;
}

void operator delete(void* block) noexcept {
  static auto* const next = original<void(void*)>("_ZdlPv");
  giveBack(next, block);
}
void operator delete[](void* block) noexcept {
  static auto* const next = original<void(void*)>("_ZdaPv");
  giveBack(next, block);
}
void operator delete(void* block, std::size_t size) noexcept {
  static auto* const next = original<void(void*, std::size_t)>("_ZdlPv" SIZE);
  giveBack(next, block, size);
}
void operator delete[](void* block, std::size_t size) noexcept {
  static auto* const next = original<void(void*, std::size_t)>("_ZdaPv" SIZE);
  giveBack(next, block, size);
}
void operator delete(void* block, const std::nothrow_t& quiet) noexcept {
  static auto* const next = original<void(void*, const std::nothrow_t&)>("_ZdlPvRKSt9nothrow_t");
  giveBack<const std::nothrow_t&>(next, block, quiet);
}
void operator delete[](void* block, const std::nothrow_t& quiet) noexcept {
  static auto* const next = original<void(void*, const std::nothrow_t&)>("_ZdaPvRKSt9nothrow_t");
  giveBack<const std::nothrow_t&>(next, block, quiet);
}

extern "C" {

int posix_memalign(void** block, std::size_t alignment, std::size_t size) noexcept {
  static auto* const next = original<int(void**, std::size_t, std::size_t)>("posix_memalign");
  if (refuses(Request::aligned)) return ENOMEM;
  const int status = next(block, alignment, size);
  if (status == 0) rememberPlane(*block);
  return status;
}

#ifndef __SANITIZE_ADDRESS__
// The C library's own names.
void __libc_free(void* block);                             // NOLINT(bugprone-reserved-identifier)
void* __libc_malloc(std::size_t size);                     // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* block, std::size_t size);       // NOLINT(bugprone-reserved-identifier)

void* malloc(std::size_t size) noexcept {
  return refusesPlain() ? nullptr : rememberPlain(__libc_malloc(size));
}
void* calloc(std::size_t count, std::size_t size) noexcept {
  return refusesPlain() ? nullptr : rememberPlain(__libc_calloc(count, size));
}
void* realloc(void* block, std::size_t size) noexcept {
  if (refusesPlain()) return nullptr;
  if (reachesPlain()) forgetPlane(block);
  return rememberPlain(__libc_realloc(block, size));
}
void free(void* block) noexcept {
  forgetPlane(block);
  __libc_free(block);
}
#endif

}  // extern "C"
