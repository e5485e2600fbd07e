#pragma once

#include <cstddef>
#include <memory>

#include "core/OrvMemory.h"

// Owner of a block from OrvAllocBytes: freed on every path out of the scope
// that holds it. Unlike a vector, the bytes are not zeroed first, so a large
// buffer sized for the worst case costs only the pages actually written.
struct OrvBytesFree {
  void operator()(void* p) const noexcept { OrvFreeBytes(p); }
};

template <class T>
using OrvOwned = std::unique_ptr<T, OrvBytesFree>;

// Room for count values of T, uninitialised.
template <class T>
OrvOwned<T> OrvAllocOwned(std::size_t count) {
  return OrvOwned<T>(static_cast<T*>(OrvAllocBytes(count * sizeof(T))));
}
