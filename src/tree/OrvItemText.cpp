#include <cstdint>
#include <cstring>

#include "orvwebpage/OrvItem.h"

int32_t MeasuredLen(const char* text, int32_t length) {
  if (length >= 0) return length;
  if (!text) return 0;
  return static_cast<int32_t>(strnlen(text, INT32_MAX));
}

namespace {

// Only the 26 ASCII letters fold; the ranges are tested on signed bytes so
// that nothing at 0x80 or above matches anything but itself.
inline bool BytesMatch(signed char x, signed char y) {
  if (x == y) return true;
  if (x >= 0x61 && x <= 0x7A) return x == y + 32;
  if (x >= 0x41 && x <= 0x5A) return y == x + 32;
  return false;
}

}  // namespace

bool CapsEqual(const char* a, int32_t aLength, const char* b, int32_t bLength) {
  int32_t n = MeasuredLen(a, aLength);
  if (n != MeasuredLen(b, bLength)) return false;
  for (int32_t i = 0; i < n; i++) {
    if (!BytesMatch(static_cast<signed char>(a[i]), static_cast<signed char>(b[i]))) return false;
  }
  return true;
}

void TrimBlanks(const char*& text, int32_t& length) {
  int32_t lead = 0;
  while (lead < length && text[lead] == ' ') lead++;
  if (length <= 0 || lead >= length) {
    // The pointer moves by the length even when that is negative; done on the
    // address so a stray length cannot make the arithmetic undefined.
    uintptr_t at =
        reinterpret_cast<uintptr_t>(text) + static_cast<uintptr_t>(static_cast<intptr_t>(length));
    text = reinterpret_cast<const char*>(at);  // NOLINT(performance-no-int-to-ptr): as said
    length = 0;
    return;
  }
  int32_t last = length - 1;
  while (text[last] == ' ') last--;
  text += lead;
  length = last - lead + 1;
}

void TrimBlanks(char*& text, int32_t& length) {
  const char* t = text;
  TrimBlanks(t, length);
  text = const_cast<char*>(t);
}

int32_t CountNonBlank(const char* text, int32_t length) {
  int32_t count = 0;
  for (int32_t i = 0; i < length; i++) {
    char c = text[i];
    if (c != ' ' && c != '\n' && c != '\t') count++;
  }
  return count;
}
