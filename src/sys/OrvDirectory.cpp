#include <unistd.h>

#include <cerrno>

#include "core/OrvOwned.h"
#include "orvwebpage/OrvSys.h"

OrvDirectory::OrvDirectory() {
  // getcwd says ERANGE until the buffer holds the whole path.
  for (size_t size = 256; size <= (size_t(1) << 20); size *= 2) {
    OrvOwned<char[]> text = OrvAllocOwned<char[]>(size);
    const bool got = getcwd(text.get(), size) != nullptr;
    const bool tooShort = !got && errno == ERANGE;
    if (got) workDir.CopyBuf(text.get(), -1);
    if (!tooShort) break;
  }
  if (!workDir.buf) workDir.Clear();
}

OrvDirectory::OrvDirectory(const OrvDirectory& other) : workDir(other.workDir) {}

OrvDirectory& OrvDirectory::operator=(const OrvDirectory& other) {
  workDir = other.workDir;
  return *this;
}
