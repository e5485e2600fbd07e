#pragma once

#include <cstdint>

// Copies and assignments of a facade share its private objects. The object
// that carries the count is counted once for every facade holding it, and the
// facade that lets go last destroys it, with whatever the facade keeps beside
// it. Any number of facades may then go in any order. Assignment is a copy
// swapped in, whose end lets go of the old objects, so self-assignment and
// already shared objects need no special case.
struct OrvShared {
  uint32_t shares = 1;
};

template <class T>
T* OrvShare(T* counted) {
  if (counted) counted->shares++;
  return counted;
}

// True when this was the last share: the caller destroys the objects.
template <class T>
bool OrvLetGo(T* counted) {
  return counted && --counted->shares == 0;
}
