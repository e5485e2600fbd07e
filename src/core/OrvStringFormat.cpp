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
    char conversion[64];
    char* p = conversion;
    char* end = conversion + sizeof conversion - 8;
    *p++ = '%';
    while (*f && (*f == '-' || *f == '+' || *f == ' ' || *f == '#' || *f == '0')) {
      if (p < end) *p++ = *f;
      f++;
    }
    if (*f == '*') {
      int w = va_arg(args, int);
      if (w < 0) {
        if (p < end) *p++ = '-';
        w = w == INT32_MIN ? INT32_MAX : -w;
      }
      PutNumber(p, end, w);
      f++;
    } else {
      while (*f >= '0' && *f <= '9') {
        if (p < end) *p++ = *f;
        f++;
      }
    }
    if (*f == '.') {
      f++;
      if (*f == '*') {
        int prec = va_arg(args, int);
        f++;
        if (prec >= 0) {  // a negative precision counts as none
          *p++ = '.';
          PutNumber(p, end, prec);
        }
      } else {
        *p++ = '.';
        while (*f >= '0' && *f <= '9') {
          if (p < end) *p++ = *f;
          f++;
        }
      }
    }
    Size size = Size::None;
    if (*f == 'h') {
      size = f[1] == 'h' ? Size::Char : Size::Short;
      f += f[1] == 'h' ? 2 : 1;
    } else if (*f == 'l') {
      size = f[1] == 'l' ? Size::LongLong : Size::Long;
      f += f[1] == 'l' ? 2 : 1;
    } else if (*f == 'j') {
      size = Size::Max, f++;
    } else if (*f == 'z') {
      size = Size::SizeT, f++;
    } else if (*f == 't') {
      size = Size::PtrDiff, f++;
    } else if (*f == 'L') {
      size = Size::LongDouble, f++;
    }
    char conv = *f;
    if (!conv) {  // a lone '%' at the end is kept as written
      out.Append(start, f - start);
      break;
    }
    f++;
    const char* lengthMod = "";
    switch (size) {
      case Size::Char:
        lengthMod = "hh";
        break;
      case Size::Short:
        lengthMod = "h";
        break;
      case Size::Long:
        lengthMod = "l";
        break;
      case Size::LongLong:
        lengthMod = "ll";
        break;
      case Size::Max:
        lengthMod = "j";
        break;
      case Size::SizeT:
        lengthMod = "z";
        break;
      case Size::PtrDiff:
        lengthMod = "t";
        break;
      case Size::LongDouble:
        lengthMod = "L";
        break;
      case Size::None:
        break;
    }
    for (const char* m = lengthMod; *m;) *p++ = *m++;
    *p++ = conv;
    *p = 0;
    switch (conv) {
      case '%':
        out += '%';
        break;
      case 'd':
      case 'i':
        switch (size) {
          case Size::Long:
            AppendOne(out, conversion, va_arg(args, long));
            break;
          case Size::LongLong:
            AppendOne(out, conversion, va_arg(args, long long));
            break;
          case Size::Max:
            AppendOne(out, conversion, va_arg(args, intmax_t));
            break;
          case Size::SizeT:
            AppendOne(out, conversion, va_arg(args, ptrdiff_t));
            break;
          case Size::PtrDiff:
            AppendOne(out, conversion, va_arg(args, ptrdiff_t));
            break;
          default:
            AppendOne(out, conversion, va_arg(args, int));
            break;
        }
        break;
      case 'u':
      case 'o':
      case 'x':
      case 'X':
        switch (size) {
          case Size::Long:
            AppendOne(out, conversion, va_arg(args, unsigned long));
            break;
          case Size::LongLong:
            AppendOne(out, conversion, va_arg(args, unsigned long long));
            break;
          case Size::Max:
            AppendOne(out, conversion, va_arg(args, uintmax_t));
            break;
          case Size::SizeT:
            AppendOne(out, conversion, va_arg(args, size_t));
            break;
          case Size::PtrDiff:
            AppendOne(out, conversion, va_arg(args, size_t));
            break;
          default:
            AppendOne(out, conversion, va_arg(args, unsigned));
            break;
        }
        break;
      case 'c':
        if (size == Size::Long)
          AppendOne(out, conversion, va_arg(args, wint_t));
        else
          AppendOne(out, conversion, va_arg(args, int));
        break;
      case 's':
        if (size == Size::Long) {
          const wchar_t* w = va_arg(args, const wchar_t*);
          AppendOne(out, conversion, w ? w : L"");
        } else {
          const char* s = va_arg(args, const char*);
          AppendOne(out, conversion, s ? s : "");
        }
        break;
      case 'p':
        AppendOne(out, conversion, va_arg(args, void*));
        break;
      case 'f':
      case 'F':
      case 'e':
      case 'E':
      case 'g':
      case 'G':
      case 'a':
      case 'A':
        if (size == Size::LongDouble)
          AppendOne(out, conversion, va_arg(args, long double));
        else
          AppendOne(out, conversion, va_arg(args, double));
        break;
      case 'n':
        // Writing through an argument is no business of a string formatter.
        (void)va_arg(args, void*);
        break;
      default:
        // Unknown conversion: keep it as written, consume nothing.
        out.Append(start, f - start);
        break;
    }
  }
  va_end(args);
  *this = static_cast<OrvString&&>(out);
}
