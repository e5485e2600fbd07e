#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cwchar>

#include "orvwebpage/OrvString.h"

// Format walks the format itself so that a NULL "%s" prints nothing (the C
// library would print "(null)"); every single conversion is still done by
// snprintf, so the output is that of the standard formatted print.

namespace {

template <class T>
void AppendOne(OrvString& out, const char* conversion, T value) {
  int n = std::snprintf(nullptr, 0, conversion, value);
  if (n <= 0) return;
  out.Reserve(long(out.len) + n);
  std::snprintf(out.buf + out.len, size_t(n) + 1, conversion, value);
  out.len += n;
}

enum class Size { None, Char, Short, Long, LongLong, Max, SizeT, PtrDiff, LongDouble };

const char* const kSizeText[] = {"", "hh", "h", "l", "ll", "j", "z", "t", "L"};

// One conversion as read from the format, rebuilt for snprintf with any `*`
// width or precision written out as digits.
struct Conversion {
  char text[64];
  Size size = Size::None;
  char letter = 0;  // 0: the format ended inside the conversion
};

// Appends the decimal digits of v (v >= 0) to the conversion under construction.
void PutNumber(char*& p, char* end, int v) {
  char digits[12];
  int n = 0;
  do {
    digits[n++] = char('0' + v % 10);
    v /= 10;
  } while (v && n < 11);
  while (n && p < end) *p++ = digits[--n];
}

void CopyDigits(const char*& f, char*& p, char* end) {
  while (*f >= '0' && *f <= '9') {
    if (p < end) *p++ = *f;
    f++;
  }
}

Size ReadSize(const char*& f) {
  switch (*f) {
    case 'h':
      return f[1] == 'h' ? (f += 2, Size::Char) : (f++, Size::Short);
    case 'l':
      return f[1] == 'l' ? (f += 2, Size::LongLong) : (f++, Size::Long);
    case 'j':
      return f++, Size::Max;
    case 'z':
      return f++, Size::SizeT;
    case 't':
      return f++, Size::PtrDiff;
    case 'L':
      return f++, Size::LongDouble;
    default:
      return Size::None;
  }
}

// The helpers below read a va_list that Format started. The analyzer checks
// each one without its caller, sees no va_start and calls every va_arg one on
// an uninitialized list.
// NOLINTBEGIN(clang-analyzer-valist.Uninitialized)

// Reads flags, width, precision, size and letter behind a '%' (f points past
// it), taking `*` arguments from args.
Conversion ReadConversion(const char*& f, va_list* args) {
  Conversion c;
  char* p = c.text;
  char* end = c.text + sizeof c.text - 8;
  *p++ = '%';
  while (*f && (*f == '-' || *f == '+' || *f == ' ' || *f == '#' || *f == '0')) {
    if (p < end) *p++ = *f;
    f++;
  }
  if (*f == '*') {
    int w = va_arg(*args, int);
    if (w < 0) {
      if (p < end) *p++ = '-';
      w = w == INT32_MIN ? INT32_MAX : -w;
    }
    PutNumber(p, end, w);
    f++;
  } else {
    CopyDigits(f, p, end);
  }
  if (*f == '.') {
    f++;
    if (*f == '*') {
      int prec = va_arg(*args, int);
      f++;
      if (prec >= 0) {  // a negative precision counts as none
        *p++ = '.';
        PutNumber(p, end, prec);
      }
    } else {
      *p++ = '.';
      CopyDigits(f, p, end);
    }
  }
  c.size = ReadSize(f);
  c.letter = *f;
  if (!c.letter) return c;
  f++;
  for (const char* m = kSizeText[int(c.size)]; *m;) *p++ = *m++;
  *p++ = c.letter;
  *p = 0;
  return c;
}

void WriteSigned(OrvString& out, const Conversion& c, va_list* args) {
  switch (c.size) {
    case Size::Long:
      return AppendOne(out, c.text, va_arg(*args, long));
    case Size::LongLong:
      return AppendOne(out, c.text, va_arg(*args, long long));
    case Size::Max:
      return AppendOne(out, c.text, va_arg(*args, intmax_t));
    case Size::SizeT:
    case Size::PtrDiff:
      return AppendOne(out, c.text, va_arg(*args, ptrdiff_t));
    default:
      return AppendOne(out, c.text, va_arg(*args, int));
  }
}

void WriteUnsigned(OrvString& out, const Conversion& c, va_list* args) {
  switch (c.size) {
    case Size::Long:
      return AppendOne(out, c.text, va_arg(*args, unsigned long));
    case Size::LongLong:
      return AppendOne(out, c.text, va_arg(*args, unsigned long long));
    case Size::Max:
      return AppendOne(out, c.text, va_arg(*args, uintmax_t));
    case Size::SizeT:
    case Size::PtrDiff:
      return AppendOne(out, c.text, va_arg(*args, size_t));
    default:
      return AppendOne(out, c.text, va_arg(*args, unsigned));
  }
}

// Writes one conversion, taking its argument; false for a letter that is no
// conversion, which the caller keeps as written.
bool WriteConversion(OrvString& out, const Conversion& c, va_list* args) {
  switch (c.letter) {
    case '%':
      out += '%';
      return true;
    case 'd':
    case 'i':
      WriteSigned(out, c, args);
      return true;
    case 'u':
    case 'o':
    case 'x':
    case 'X':
      WriteUnsigned(out, c, args);
      return true;
    case 'c':
      if (c.size == Size::Long)
        AppendOne(out, c.text, va_arg(*args, wint_t));
      else
        AppendOne(out, c.text, va_arg(*args, int));
      return true;
    case 's':
      if (c.size == Size::Long) {
        const wchar_t* w = va_arg(*args, const wchar_t*);
        AppendOne(out, c.text, w ? w : L"");
      } else {
        const char* s = va_arg(*args, const char*);
        AppendOne(out, c.text, s ? s : "");
      }
      return true;
    case 'p':
      AppendOne(out, c.text, va_arg(*args, void*));
      return true;
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
      if (c.size == Size::LongDouble)
        AppendOne(out, c.text, va_arg(*args, long double));
      else
        AppendOne(out, c.text, va_arg(*args, double));
      return true;
    case 'n':
      // Writing through an argument is no business of a string formatter.
      (void)va_arg(*args, void*);
      return true;
    default:
      return false;
  }
}

// NOLINTEND(clang-analyzer-valist.Uninitialized)

}  // namespace

void OrvString::Format(const char* format, ...) {
  OrvString out;
  out.Clear();
  if (!format) {
    *this = static_cast<OrvString&&>(out);
    return;
  }
  va_list args;
  va_start(args, format);
  const char* f = format;
  while (*f) {
    if (*f != '%') {
      const char* run = f;
      while (*f && *f != '%') f++;
      out.Append(run, f - run);
      continue;
    }
    const char* start = f++;
    Conversion c = ReadConversion(f, &args);
    if (!c.letter) {  // a lone '%' at the end is kept as written
      out.Append(start, f - start);
      break;
    }
    // Unknown conversion: kept as written, consuming nothing.
    if (!WriteConversion(out, c, &args)) out.Append(start, f - start);
  }
  va_end(args);
  *this = static_cast<OrvString&&>(out);
}
