#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"

// Byte strings of the library. Lengths and offsets count bytes; no encoding is
// assumed. Wherever a text pointer comes with a length, a negative length means
// "NUL-terminated, measure it", and NULL with length 0 or -1 is the empty text.

// Counted, NUL-terminated byte string. All-zero (buf NULL, len 0, cap 0) is the
// empty string, so records may be zero-filled instead of constructed. Every
// operation that sets the text leaves a non-NULL buf, even for an empty result.
class ORV_API OrvString {
 public:
  char* buf;
  int32_t len;
  uint32_t cap;  // bytes owned at buf; 0 while buf is NULL or the shared empty text

  OrvString() : buf(nullptr), len(0), cap(0) {}
  OrvString(const OrvString& other);
  OrvString(OrvString&& other) noexcept : buf(other.buf), len(other.len), cap(other.cap) {
    other.buf = nullptr;
    other.len = 0;
    other.cap = 0;
  }
  OrvString(const char* text, long length);
  ~OrvString();

  OrvString& operator=(const OrvString& other);
  OrvString& operator=(OrvString&& other) noexcept;
  OrvString& operator=(const char* text);
  int operator==(const OrvString& other) const;
  OrvString& operator+=(const OrvString& other);
  OrvString& operator+=(const char* text);
  OrvString& operator+=(char c);

  void Append(const char* text, long length);
  void CopyBuf(const char* text, long length);
  void Clear() {
    len = 0;
    if (cap)
      buf[0] = 0;
    else
      buf = emptyText;
  }
  void TrimBanks();
  void ChangeToChar();
  long Cutlen(long n);
  long CutBefore(long n);
  int Find(const char* needle, long length, long from) const;
  int Findc(char c, long from) const;
  int RightFindc(char c, long from) const;
  int ReplaceAll(const char* oldText, long oldLength, const char* newText, long newLength);
  void Format(const char* format, ...) __attribute__((format(printf, 2, 3)));
  int CapsIsEqual(const char* text, long length) const;
  long Compare(const char* text, long length) const;

  // Room for n text bytes plus the NUL, keeping the text. Not part of the
  // byte-string contract proper, but lets builders avoid repeated growth.
  void Reserve(long n);

 private:
  // Empty texts point here so that clearing or copying nothing allocates
  // nothing; cap 0 marks the string as not owning it, and it is never written.
  static char emptyText[1];

  void Grow(uint32_t need);
  void CopyBufAnyway(const char* text, long length);
};

// Strings packed into one buffer, each followed by a NUL. buf, count and
// offsets are read directly: element i starts at buf + offsets[i].
class ORV_API OrvStrArray {
 public:
  char* buf;

 private:
  int32_t used;    // bytes of buf in use
  int32_t bufCap;  // bytes allocated at buf

 public:
  int32_t count;

 private:
  int32_t offsetCap;  // entries allocated at offsets

 public:
  int32_t* offsets;

  OrvStrArray();
  OrvStrArray(const OrvStrArray& other);
  ~OrvStrArray();

  OrvStrArray& operator=(const OrvStrArray& other);
  void AddString(const char* text, long length);
  char* operator[](long i) const;
  int GetString(long i, OrvString& out) const;
  long GetStringLen(long i) const;
  // Storage stays: the same arrays are filled again and again.
  void RemoveAll(int) {
    used = 0;
    count = 0;
  }
  int Split(const char* text, char separator);

 private:
  void ReserveBytes(int64_t need);
  void ReserveOffsets(int64_t need);
};

ORV_API long Orvstrlen(const char* text);
ORV_API long OrvAtoInt(const char* text, long length);
ORV_API void* Orvmemcpy(void* to, const void* from, long n);
ORV_API int Orvmemcmp(const void* a, const void* b, long n);
