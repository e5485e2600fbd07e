#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>

#include "core/OrvMemory.h"

// Owners for memory of the library's helpers, so that no path out of a
// function has to remember a free. Raw calls stay where they implement a
// container or arena themselves, and in the facades of the public headers,
// which see their private objects only as declared names.

struct OrvBytesFree {
  void operator()(void* p) const noexcept { OrvFreeBytes(p); }
};

struct OrvArrayDelete {
  template <class T>
  void operator()(T* p) const noexcept {
    OrvDeleteArray(p);
  }
};

struct OrvObjectDelete {
  template <class T>
  void operator()(T* p) const noexcept {
    OrvDelete(p);
  }
};

// Uninitialised slots of plain data, for scratch whose every slot is written
// before it is read: no value-initialisation pass as a vector would make.
template <class T>
using OrvOwnedBytes = std::unique_ptr<T[], OrvBytesFree>;

template <class T>
OrvOwnedBytes<T> OrvOwnBytes(std::size_t n) {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
  return OrvOwnedBytes<T>(static_cast<T*>(OrvAllocBytes(sizeof(T) * n)));
}

// Room for n slots, the first ones keeping their contents (as realloc does).
template <class T>
void OrvRegrowBytes(OrvOwnedBytes<T>& owned, std::size_t n) {
  static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);
  owned.reset(static_cast<T*>(OrvReallocBytes(owned.release(), sizeof(T) * n)));
}

// Value-initialised array of n constructed elements.
template <class T>
using OrvOwnedArray = std::unique_ptr<T[], OrvArrayDelete>;

template <class T>
OrvOwnedArray<T> OrvOwnArray(std::size_t n) {
  return OrvOwnedArray<T>(OrvNewArray<T>(n));
}

template <class T>
using OrvOwnedPtr = std::unique_ptr<T, OrvObjectDelete>;

template <class T, class... Args>
OrvOwnedPtr<T> OrvOwnNew(Args&&... args) {
  return OrvOwnedPtr<T>(OrvNew<T>(std::forward<Args>(args)...));
}
