#include <unistd.h>

#include <cerrno>

#include "core/OrvMemory.h"
#include "orvwebpage/OrvSys.h"

OrvDirectory::OrvDirectory() {
  // getcwd says ERANGE until the buffer holds the whole path.
  for (size_t size = 256; size <= (size_t(1) << 20); size *= 2) {
    char* text = static_cast<char*>(OrvAllocBytes(size));
    const bool got = getcwd(text, size) != nullptr;
    const bool tooShort = !got && errno == ERANGE;
    if (got) workDir.CopyBuf(text, -1);
    OrvFreeBytes(text);
    if (!tooShort) break;
  }
  if (!workDir.buf) workDir.Clear();
}

OrvDirectory::OrvDirectory(const OrvDirectory& other) : workDir(other.workDir) {}

OrvDirectory& OrvDirectory::operator=(const OrvDirectory& other) {
  workDir = other.workDir;
  return *this;
}
