#include "PyPage.h"

namespace orvpy {

PageForParse PreparePage(const py::object& page, const std::string& charset) {
  PageForParse out;
  out.keepBytes = charset == "bytes";
  if (!out.keepBytes && charset != "utf-8")
    throw py::value_error("charset must be \"utf-8\" or \"bytes\", not \"" + charset + "\"");
  TextView view = ViewTextOrThrow(page, "page");
  // A str is decoded already, so for texts as str it goes in as ASCII with
  // character references, which read the same whatever charset the page
  // declares.
  if (!view.isBytes && !out.keepBytes) {
    py::object ascii = py::reinterpret_steal<py::object>(
        PyUnicode_AsEncodedString(page.ptr(), "ascii", "xmlcharrefreplace"));
    if (!ascii) throw py::error_already_set();
    out.text.assign(PyBytes_AS_STRING(ascii.ptr()), size_t(PyBytes_GET_SIZE(ascii.ptr())));
    if (out.text.starts_with("&#65279;")) out.text.erase(0, 8);  // a byte-order mark left in
  } else {
    out.text.assign(view.data, size_t(view.size));
  }
  out.charset = out.keepBytes ? ORV_CHARSET_BYTES : ORV_CHARSET_UTF8;
  return out;
}

}  // namespace orvpy
