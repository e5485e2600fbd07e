#pragma once

#include <cstdint>
#include <utility>

#include "core/OrvMemory.h"

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

// The facade's destructor: the last share destroys the object.
template <class T>
void OrvRelease(T* counted) {
  if (OrvLetGo(counted)) OrvDelete(counted);
}

// The facade's assignment for its one shared pointer `member`.
template <class Facade, class T>
Facade& OrvAssignShared(Facade& self, const Facade& other, T* Facade::*member) {
  Facade copy(other);
  std::swap(self.*member, copy.*member);
  return self;
}
