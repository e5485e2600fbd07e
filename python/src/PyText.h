#pragma once

// How texts cross between Python and the library. A text may come in as str
// (handed over as its UTF-8) or bytes; anything else is a TypeError. What the
// library hands back comes out in the kind the call's input had: bytes stay
// bytes, and for str input the bytes are decoded as UTF-8 with U+FFFD for what
// is not (percent-decoding or cutting can make such bytes), so no text raises.

#include <Python.h>
#include <pybind11/pybind11.h>

#include <string>

#include "orvwebpage/OrvString.h"

namespace orvpy {

namespace py = pybind11;

// A borrowed view of a str or bytes; `owner` keeps an encoded copy alive when
// the str had no UTF-8 form of its own (lone surrogates).
struct TextView {
  const char* data = "";
  Py_ssize_t size = 0;
  bool isBytes = false;
  py::object owner;
};

// False, with no Python error set, for an object that is neither str nor bytes;
// ValueError for a text longer than the library takes.
bool ViewText(PyObject* object, TextView& view);
// The same, raising TypeError naming `what` instead of returning false.
TextView ViewTextOrThrow(const py::handle& object, const char* what);

// A new reference: bytes, or str decoded with U+FFFD replacement.
PyObject* NewText(const char* data, Py_ssize_t size, bool asBytes);
inline py::object MakeText(const char* data, Py_ssize_t size, bool asBytes) {
  PyObject* text = NewText(data, size, asBytes);
  if (!text) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(text);
}
inline py::object MakeText(const OrvString& s, bool asBytes) {
  return MakeText(s.len > 0 ? s.buf : "", s.len > 0 ? s.len : 0, asBytes);
}

inline OrvString ToOrv(const TextView& view) { return OrvString(view.data, long(view.size)); }

// An OrvString over memory it does not own (cap 0), for calls that only read
// their argument; the text must outlive it and be NUL-terminated.
class BorrowedOrv {
 public:
  explicit BorrowedOrv(const TextView& view) {
    s.buf = const_cast<char*>(view.data);
    s.len = int32_t(view.size);
  }
  ~BorrowedOrv() { s.buf = nullptr, s.len = 0; }
  BorrowedOrv(const BorrowedOrv&) = delete;
  BorrowedOrv& operator=(const BorrowedOrv&) = delete;
  const OrvString& get() const { return s; }

 private:
  OrvString s;
};

// Texts above this size cannot be an OrvString (32-bit lengths).
constexpr Py_ssize_t kMaxTextSize = 0x7fffffff;

}  // namespace orvpy
