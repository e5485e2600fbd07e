#include <vector>

#include "Bindings.h"
#include "orvwebpage/OrvVersion.h"

namespace orvpy {

PyTypeObject* NewRecordType(pybind11::module_& m, const char* name, const char* doc,
                            std::initializer_list<const char*> fields, int visible) {
  // The descriptions must outlive the type: they are made once per process.
  auto* members = new std::vector<PyStructSequence_Field>();
  for (const char* field : fields) members->push_back({field, nullptr});
  members->push_back({nullptr, nullptr});
  std::string qualified = std::string("orvwebpage.") + name;
  auto* desc = new PyStructSequence_Desc{strdup(qualified.c_str()), doc, members->data(),
                                         visible < 0 ? int(fields.size()) : visible};
  PyTypeObject* type = PyStructSequence_NewType(desc);
  if (!type) throw pybind11::error_already_set();
  m.add_object(name, reinterpret_cast<PyObject*>(type));
  return type;
}

}  // namespace orvpy

PYBIND11_MODULE(_orvwebpage, m) {
  m.doc() = R"(Web-page analysers: URL shapes, link classes, URL search, visible-text
classes and site page-count estimates.

Texts: str or bytes in; out in the same kind. str input goes in as UTF-8, and
library bytes that are not UTF-8 come out of it with U+FFFD; bytes stay bytes.)";
  m.attr("__version__") = ORV_VERSION;
  orvpy::AddUrl(m);
  orvpy::AddLinks(m);
  orvpy::AddSearch(m);
  orvpy::AddNodes(m);
  orvpy::AddEstimate(m);
  orvpy::AddSize(m);
  orvpy::AddPageLinks(m);
}
