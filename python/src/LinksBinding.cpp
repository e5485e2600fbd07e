// orvwebpage.LinkClasses and classify_links: links sorted into classes of
// like URL shape. Links come back as the caller's own objects wherever the
// library handed the text back unchanged, which keeps 100,000 links cheap.

#include <vector>

#include "Bindings.h"
#include "PyText.h"
#include "orvwebpage/OrvWebPageUrls.h"

namespace orvpy {
namespace {

PyTypeObject* linkType = nullptr;
PyTypeObject* linkClassType = nullptr;

struct AddedLink {
  PyObject* url;    // owned
  PyObject* label;  // owned; null when none was given
  PyObject* obj;    // owned; null when none was given
  Py_ssize_t urlSize;
  bool isBytes;
};

class PyLinkClasses {
 public:
  explicit PyLinkClasses(const py::object& entryUrl) : entry(entryUrl) {
    if (!entryUrl.is_none()) urls.SetEntryUrl(ToOrv(ViewTextOrThrow(entryUrl, "entry")));
  }
  ~PyLinkClasses() { Clear(); }
  PyLinkClasses(const PyLinkClasses&) = delete;
  PyLinkClasses& operator=(const PyLinkClasses&) = delete;

  // A link is a text, or a (url, label) or (url, label, obj) tuple or list.
  void AddOne(PyObject* link) {
    PyObject *url = link, *label = nullptr, *obj = nullptr;
    if (PyTuple_Check(link) || PyList_Check(link)) {
      Py_ssize_t size = PySequence_Fast_GET_SIZE(link);
      if (size < 1 || size > 3)
        throw py::type_error("a link must be url, (url, label) or (url, label, obj)");
      PyObject** items = PySequence_Fast_ITEMS(link);
      url = items[0];
      if (size > 1 && items[1] != Py_None) label = items[1];
      if (size > 2) obj = items[2];
    }
    TextView urlView, labelView;
    if (!ViewText(url, urlView))
      throw py::type_error(std::string("a link's url must be str or bytes, not ") +
                           Py_TYPE(url)->tp_name);
    if (label && !ViewText(label, labelView))
      throw py::type_error(std::string("a link's label must be str, bytes or None, not ") +
                           Py_TYPE(label)->tp_name);
    BorrowedOrv urlText(urlView), labelText(labelView);
    urls.AddLink(urlText.get(), labelText.get(), reinterpret_cast<void*>(added.size()));
    Py_INCREF(url);
    Py_XINCREF(label);
    Py_XINCREF(obj);
    added.push_back({url, label, obj, urlView.size, urlView.isBytes});
  }

  void Add(const py::object& url, const py::object& label, const py::object& obj) {
    py::tuple link = py::make_tuple(url, label, obj);
    AddOne(link.ptr());
  }

  void Extend(const py::iterable& links) {
    if (PyUnicode_Check(links.ptr()) || PyBytes_Check(links.ptr()))
      throw py::type_error("links must be an iterable of links, not one text");
    if (PyList_Check(links.ptr()) || PyTuple_Check(links.ptr())) {
      // Indexing anew each time: a list may change size under us.
      for (Py_ssize_t i = 0; i < PySequence_Fast_GET_SIZE(links.ptr()); i++)
        AddOne(PySequence_Fast_ITEMS(links.ptr())[i]);
      return;
    }
    for (py::handle link : links) AddOne(link.ptr());
  }

  py::list Classify() {
    urls.ClassifyUrls();
    int count = urls.GetClassCount();
    py::list classes(count);
    OrvString key, url, label;
    for (int c = 0; c < count; c++) {
      void* handle = urls.FetchClass(c);
      int size = urls.GetUrlCount(handle);
      py::list links(size);
      bool keyBytes = false;
      for (int i = 0; i < size; i++) {
        void* userData = nullptr;
        if (!urls.FetchUrl(handle, i, url, label, userData)) throw py::index_error("lost a link");
        const AddedLink& link = added[reinterpret_cast<size_t>(userData)];
        if (i == 0) keyBytes = link.isBytes;
        PyList_SET_ITEM(links.ptr(), i, NewLink(link, url));
      }
      urls.GetClassKeyStr(handle, key);
      py::object keyText = MakeText(key, keyBytes);
      PyObject* record = PyStructSequence_New(linkClassType);
      if (!record) throw py::error_already_set();
      PyStructSequence_SET_ITEM(record, 0, keyText.release().ptr());
      PyStructSequence_SET_ITEM(record, 1, links.release().ptr());
      PyList_SET_ITEM(classes.ptr(), c, record);
    }
    return classes;
  }

  void Clear() {
    urls.ClearLinks();
    for (const AddedLink& link : added) {
      Py_DECREF(link.url);
      Py_XDECREF(link.label);
      Py_XDECREF(link.obj);
    }
    added.clear();
  }

  size_t Size() const { return added.size(); }
  const py::object entry;

 private:
  // The library trims blanks around a URL and hands the label back unread.
  static PyObject* NewLink(const AddedLink& link, const OrvString& url) {
    PyObject* record = PyStructSequence_New(linkType);
    if (!record) throw py::error_already_set();
    PyObject* urlOut = link.url;
    if (url.len == link.urlSize)
      Py_INCREF(urlOut);
    else
      urlOut = NewText(url.len > 0 ? url.buf : "", url.len, link.isBytes);
    PyObject* labelOut = link.label;
    if (labelOut)
      Py_INCREF(labelOut);
    else
      labelOut = NewText("", 0, link.isBytes);
    PyObject* objOut = link.obj ? link.obj : Py_None;
    Py_INCREF(objOut);
    PyStructSequence_SET_ITEM(record, 0, urlOut);
    PyStructSequence_SET_ITEM(record, 1, labelOut);
    PyStructSequence_SET_ITEM(record, 2, objOut);
    if (!urlOut || !labelOut) {
      Py_DECREF(record);
      throw py::error_already_set();
    }
    return record;
  }

  OrvWebPageUrls urls;
  std::vector<AddedLink> added;
};

}  // namespace

void AddLinks(py::module_& m) {
  linkType =
      NewRecordType(m, "Link", "A classified link: url, label, obj", {"url", "label", "obj"});
  linkClassType =
      NewRecordType(m, "LinkClass", "A class of links: its key and its links", {"key", "links"});

  py::class_<PyLinkClasses>(m, "LinkClasses", R"(Links sorted into classes of like URL shape.

LinkClasses(entry=None); add() or extend() links, classify() for the classes,
clear() before the next page. A link is a url, (url, label) or (url, label, obj);
obj comes back with the link unread.)")
      .def(py::init<py::object>(), py::arg("entry") = py::none())
      .def_readonly("entry", &PyLinkClasses::entry)
      .def("add", &PyLinkClasses::Add, py::arg("url"), py::arg("label") = py::none(),
           py::arg("obj") = py::none())
      .def("extend", &PyLinkClasses::Extend, py::arg("links"))
      .def("classify", &PyLinkClasses::Classify,
           R"(Classes of every link added since clear(), in class order: LinkClass(key, links),
each link a Link(url, label, obj) in the order added.)")
      .def("clear", &PyLinkClasses::Clear)
      .def("__len__", &PyLinkClasses::Size);

  m.def(
      "classify_links",
      [](const py::iterable& links, const py::object& entry) {
        PyLinkClasses classes(entry);
        classes.Extend(links);
        return classes.Classify();
      },
      py::arg("links"), py::arg("entry") = py::none(),
      "The classes of links at once: LinkClasses(entry).extend(links), then classify().");
}

}  // namespace orvpy
