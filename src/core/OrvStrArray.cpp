#include <cstring>

#include "core/OrvBytes.h"
#include "core/OrvMemory.h"
#include "core/OrvTextLength.h"
#include "orvwebpage/OrvString.h"

OrvStrArray::OrvStrArray()
    : buf(nullptr), used(0), bufCap(0), count(0), offsetCap(0), offsets(nullptr) {}

OrvStrArray::OrvStrArray(const OrvStrArray& other) : OrvStrArray() { *this = other; }

OrvStrArray::~OrvStrArray() {
  OrvFreeBytes(buf);
  OrvFreeBytes(offsets);
}

void OrvStrArray::ReserveBytes(int64_t need) {
  if (need <= bufCap) return;
  int64_t wanted = bufCap < 64 ? 64 : int64_t(bufCap) * 2;
  if (wanted < need) wanted = need;
  if (wanted > INT32_MAX) wanted = OrvCheckedLength(long(need));
  buf = static_cast<char*>(OrvReallocBytes(buf, size_t(wanted)));
  bufCap = int32_t(wanted);
}

void OrvStrArray::ReserveOffsets(int64_t need) {
  if (need <= offsetCap) return;
  int64_t wanted = offsetCap < 8 ? 8 : int64_t(offsetCap) * 2;
  if (wanted < need) wanted = need;
  if (wanted > INT32_MAX) wanted = OrvCheckedLength(long(need));
  offsets = static_cast<int32_t*>(OrvReallocBytes(offsets, size_t(wanted) * sizeof(int32_t)));
  offsetCap = int32_t(wanted);
}

OrvStrArray& OrvStrArray::operator=(const OrvStrArray& other) {
  if (this == &other) return *this;
  ReserveBytes(other.used);
  ReserveOffsets(other.count);
  if (other.used > 0) std::memcpy(buf, other.buf, size_t(other.used));
  if (other.count > 0) std::memcpy(offsets, other.offsets, size_t(other.count) * sizeof(int32_t));
  used = other.used;
  count = other.count;
  return *this;
}

void OrvStrArray::AddString(const char* text, long length) {
  uint32_t n = OrvTextLength(text, length);
  if (int64_t(used) + n + 1 <= bufCap && count < offsetCap) {
    // Room enough: nothing moves, and a source among the elements lies
    // wholly before the place it is copied to.
    OrvCopyBytes(buf + used, text, n);
    buf[used + n] = 0;
    offsets[count++] = used;
    used += int32_t(n) + 1;
    return;
  }
  // The text may come out of this array's own buffer, which can move.
  bool inside = buf && text >= buf && text < buf + bufCap;
  size_t at = inside ? size_t(text - buf) : 0;
  ReserveBytes(int64_t(used) + n + 1);
  ReserveOffsets(int64_t(count) + 1);
  if (inside) text = buf + at;
  // buf is NULL only while bufCap is 0, a link between fields that the
  // analyzer loses across the Reserve calls.
  // NOLINTBEGIN(clang-analyzer-core.NonNullParamChecker,clang-analyzer-core.NullDereference)
  if (n) std::memmove(buf + used, text, n);
  buf[used + n] = 0;
  // NOLINTEND(clang-analyzer-core.NonNullParamChecker,clang-analyzer-core.NullDereference)
  offsets[count++] = used;
  used += int32_t(n) + 1;
}

char* OrvStrArray::operator[](long i) const {
  if (i < 0 || i >= count) return nullptr;
  return buf + offsets[i];
}

int OrvStrArray::GetString(long i, OrvString& out) const {
  if (i < 0 || i >= count) return 0;
  out.CopyBuf(buf + offsets[i], -1);
  return 1;
}

long OrvStrArray::GetStringLen(long i) const {
  if (i < 0 || i >= count) return -1;
  return Orvstrlen(buf + offsets[i]);
}

int OrvStrArray::Split(const char* text, char separator) {
  uint32_t n = OrvTextLength(text, -1);
  if (n == 0) {
    RemoveAll(0);
    return 0;
  }
  if (buf && text >= buf && text < buf + bufCap) {
    // Splitting one of our own elements: work from a copy.
    OrvStrArray copy;
    copy.Split(text, separator);
    *this = copy;
    return count;
  }
  ReserveBytes(int64_t(n) + 1);
  // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker): as in AddString
  std::memcpy(buf, text, n + 1);
  int64_t pieces = 1;
  for (const char* p = buf; (p = static_cast<const char*>(std::memchr(p, separator, buf + n - p)));
       p++)
    pieces++;
  ReserveOffsets(pieces);
  count = 0;
  offsets[count++] = 0;
  for (char* p = buf; (p = static_cast<char*>(std::memchr(p, separator, buf + n - p)));) {
    *p++ = 0;
    offsets[count++] = int32_t(p - buf);
  }
  used = int32_t(n) + 1;
  return count;
}
