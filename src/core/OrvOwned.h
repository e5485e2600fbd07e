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

// Owner of a block from OrvAllocBytes: freed on every path out of the scope
// that holds it. Unlike a vector, the bytes are not zeroed first, so a large
// buffer sized for the worst case costs only the pages actually written.
// OrvOwned<T[]> indexes its slots.
struct OrvBytesFree {
  void operator()(void* p) const noexcept { OrvFreeBytes(p); }
};

template <class T>
using OrvOwned = std::unique_ptr<T, OrvBytesFree>;

// Room for count values of T (or of U for T = U[]), uninitialised.
template <class T>
OrvOwned<T> OrvAllocOwned(std::size_t count) {
  using Slot = std::remove_extent_t<T>;
  static_assert(std::is_trivially_copyable_v<Slot> && std::is_trivially_destructible_v<Slot>);
  // NOLINTNEXTLINE(bugprone-sizeof-expression): Slot may be a pointer; its size is meant
  return OrvOwned<T>(static_cast<Slot*>(OrvAllocBytes(count * sizeof(Slot))));
}

// Room for count values, the first ones keeping their contents (as realloc).
template <class T>
void OrvReallocOwned(OrvOwned<T>& owned, std::size_t count) {
  using Slot = std::remove_extent_t<T>;
  static_assert(std::is_trivially_copyable_v<Slot> && std::is_trivially_destructible_v<Slot>);
  // NOLINTNEXTLINE(bugprone-sizeof-expression): Slot may be a pointer; its size is meant
  owned.reset(static_cast<Slot*>(OrvReallocBytes(owned.release(), count * sizeof(Slot))));
}

// Owners for OrvNewArray and OrvNew.
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

// Value-initialised array of count constructed elements.
template <class T>
using OrvOwnedArray = std::unique_ptr<T[], OrvArrayDelete>;

template <class T>
OrvOwnedArray<T> OrvNewOwnedArray(std::size_t count) {
  return OrvOwnedArray<T>(OrvNewArray<T>(count));
}

template <class T>
using OrvOwnedObject = std::unique_ptr<T, OrvObjectDelete>;

template <class T, class... Args>
OrvOwnedObject<T> OrvNewOwned(Args&&... args) {
  return OrvOwnedObject<T>(OrvNew<T>(std::forward<Args>(args)...));
}
