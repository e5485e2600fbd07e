#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/OrvMemory.h"
#include "core/OrvOwned.h"

// The parser reads the body of a script or style element a character at a
// time, and such bodies are close to half the bytes of a common page. So they
// are cut out of the page before it is parsed and handed to the tree whole
// when their element starts. The parser alone decides what is an element: a
// cut body is handed over only if its element starts exactly at the tag it
// was cut behind, and a page where any cut body is not met so is parsed again
// uncut.
struct OrvRawBody {
  size_t tagEnd;  // the start tag's '>', in the cut page
  size_t from;    // the body, in the page before cutting
  size_t to;
  bool style;  // else script
};

struct OrvRawBodies {
  std::vector<OrvRawBody, OrvAllocator<OrvRawBody>> list;
  size_t next = 0;  // the first body not yet handed over
};

// The page (well-formed UTF-8) without the bodies worth cutting, which are
// listed in bodies; null when there are none.
[[nodiscard]] OrvOwned<char> OrvCutRawBodies(const char* page, size_t size, OrvRawBodies& bodies,
                                             size_t& cutSize);

// What the parser's own reading of a body gives: its characters but those
// that XML does not allow, as runs passed to add(run, length); and how many
// end tags that do not close the element it met on the way, each of which
// it reports as a mismatch. False for a body with a NUL byte, whose reading
// this does not follow.
typedef void (*OrvRawRunSink)(const char* run, size_t length, void* user);
[[nodiscard]] bool OrvReadRawBody(const char* body, size_t length, OrvRawRunSink add, void* user,
                                  uint64_t& strayEndTags);
