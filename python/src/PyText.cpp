#include "PyText.h"

namespace orvpy {

bool ViewText(PyObject* object, TextView& view) {
  if (PyBytes_Check(object)) {
    view.data = PyBytes_AS_STRING(object);
    view.size = PyBytes_GET_SIZE(object);
    view.isBytes = true;
  } else if (PyUnicode_Check(object)) {
    view.isBytes = false;
    view.data = PyUnicode_AsUTF8AndSize(object, &view.size);
    if (!view.data) {
      // Lone surrogates: those of surrogateescape go back to their bytes,
      // and if any other is left, every one becomes '?'.
      PyErr_Clear();
      PyObject* encoded = PyUnicode_AsEncodedString(object, "utf-8", "surrogateescape");
      if (!encoded) {
        PyErr_Clear();
        encoded = PyUnicode_AsEncodedString(object, "utf-8", "replace");
      }
      if (!encoded) throw py::error_already_set();
      view.owner = py::reinterpret_steal<py::object>(encoded);
      view.data = PyBytes_AS_STRING(encoded);
      view.size = PyBytes_GET_SIZE(encoded);
    }
  } else {
    return false;
  }
  // Cutting would hand the library another text than the caller's.
  if (view.size > kMaxTextSize)
    throw py::value_error("text of " + std::to_string(view.size) + " bytes is longer than the " +
                          std::to_string(kMaxTextSize) + " bytes the library takes");
  return true;
}

TextView ViewTextOrThrow(const py::handle& object, const char* what) {
  TextView view;
  if (!ViewText(object.ptr(), view))
    throw py::type_error(std::string(what) + " must be str or bytes, not " +
                         Py_TYPE(object.ptr())->tp_name);
  return view;
}

PyObject* NewText(const char* data, Py_ssize_t size, bool asBytes) {
  if (asBytes) return PyBytes_FromStringAndSize(data, size);
  return PyUnicode_DecodeUTF8(data, size, "replace");
}

}  // namespace orvpy
