#include <cstdint>
#include <cstring>

#include "core/OrvTextLength.h"
#include "orvwebpage/OrvString.h"

long Orvstrlen(const char* text) { return text ? long(std::strlen(text)) : 0; }

long OrvAtoInt(const char* text, long length) {
  uint32_t n = OrvTextLength(text, length);
  uint32_t i = 0;
  while (i < n && (text[i] == ' ' || text[i] == '\t')) i++;
  bool negative = false;
  if (i < n && (text[i] == '-' || text[i] == '+')) negative = text[i++] == '-';
  // Accumulated as a magnitude that stops growing past the 32-bit range, so
  // the result saturates instead of wrapping.
  const int64_t limit = negative ? int64_t(INT32_MAX) + 1 : INT32_MAX;
  int64_t value = 0;
  while (i < n) {
    char c = text[i];
    if (c >= '0' && c <= '9') {
      value = value * 10 + (c - '0');
      if (value > limit) value = limit;
      i++;
    } else if (c == ',' && i > 0 && text[i - 1] >= '0' && text[i - 1] <= '9' && i + 1 < n &&
               text[i + 1] >= '0' && text[i + 1] <= '9') {
      i++;  // thousands separator between two digits
    } else {
      break;
    }
  }
  return long(negative ? -value : value);
}

void* Orvmemcpy(void* to, const void* from, long n) {
  if (n > 0) std::memcpy(to, from, size_t(n));
  return to;
}

int Orvmemcmp(const void* a, const void* b, long n) {
  if (n <= 0) return 0;
  return std::memcmp(a, b, size_t(n));
}
