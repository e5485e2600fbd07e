// orvwebpage.UrlSearch: a set of URLs searched by the shape of an example.

#include <pybind11/stl.h>

#include "Bindings.h"
#include "PyText.h"
#include "orvwebpage/OrvWebPageUrlsSearch.h"

namespace orvpy {
namespace {

class PyUrlSearch {
 public:
  explicit PyUrlSearch(const py::object& entryUrl) { SetEntry(entryUrl); }

  void SetEntry(const py::object& value) {
    // An empty entry has no domain, the same as none.
    search.SetEntryUrl(value.is_none() ? OrvString("", 0) : ToOrv(ViewTextOrThrow(value, "entry")));
    entry = value;
  }

  void Add(const py::object& url) {
    TextView view = ViewTextOrThrow(url, "url");
    search.AddUrl(BorrowedOrv(view).get());
  }

  void Extend(const py::iterable& urls) {
    if (py::isinstance<py::str>(urls) || py::isinstance<py::bytes>(urls))
      throw py::type_error("urls must be an iterable of URLs, not one text");
    for (py::handle url : urls) Add(py::reinterpret_borrow<py::object>(url));
  }

  // Only this search's finds, though the library's found list keeps them all.
  py::tuple Search(const py::object& example) {
    TextView view = ViewTextOrThrow(example, "example");
    unsigned before = search.GetFoundUrlsCount();
    OrvString key, url;
    search.SearchUrls(BorrowedOrv(view).get(), key);
    unsigned after = search.GetFoundUrlsCount();
    py::list found;
    for (unsigned i = before; i < after; i++) {
      search.GetFoundUrl(i, url);
      found.append(MakeText(url, view.isBytes));
    }
    return py::make_tuple(MakeText(key, view.isBytes), found);
  }

  void Clear() { search.ClearUrls(); }
  int Size() { return search.GetInCount(); }

  py::object entry = py::none();

 private:
  OrvWebPageUrlsSearch search;
};

}  // namespace

void AddSearch(py::module_& m) {
  py::class_<PyUrlSearch>(m, "UrlSearch", R"(A set of URLs searched by the shape of an example.

UrlSearch(entry=None); add() or extend() URLs; search(example) gives (key, found):
the example's shape key and the stored URLs of that shape in the order added,
both in the example's kind of text. clear() forgets the URLs, not the entry.)")
      .def(py::init<py::object>(), py::arg("entry") = py::none())
      .def_property(
          "entry", [](const PyUrlSearch& s) { return s.entry; }, &PyUrlSearch::SetEntry,
          "The entry URL whose domain counts as the site; set it before a search")
      .def("add", &PyUrlSearch::Add, py::arg("url"))
      .def("extend", &PyUrlSearch::Extend, py::arg("urls"))
      .def("search", &PyUrlSearch::Search, py::arg("example"))
      .def("clear", &PyUrlSearch::Clear)
      .def("__len__", &PyUrlSearch::Size);
}

}  // namespace orvpy
