// orvwebpage.visible_nodes: the visible texts of a page in classes.

#include <string>
#include <utility>
#include <vector>

#include "Bindings.h"
#include "PyText.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvWebPageVisibleNodes.h"

namespace orvpy {
namespace {

using Piece = std::pair<const char*, Py_ssize_t>;

py::tuple VisibleNodes(const py::object& page, const std::string& charset) {
  bool keepBytes = charset == "bytes";
  if (!keepBytes && charset != "utf-8")
    throw py::value_error("charset must be \"utf-8\" or \"bytes\", not \"" + charset + "\"");
  TextView view = ViewTextOrThrow(page, "page");
  // The parser works on a copy it may change. A str is decoded already, so
  // for texts as str it goes in as ASCII with character references, which
  // read the same whatever charset the page declares.
  std::string text;
  if (!view.isBytes && !keepBytes) {
    py::object ascii = py::reinterpret_steal<py::object>(
        PyUnicode_AsEncodedString(page.ptr(), "ascii", "xmlcharrefreplace"));
    if (!ascii) throw py::error_already_set();
    text.assign(PyBytes_AS_STRING(ascii.ptr()), size_t(PyBytes_GET_SIZE(ascii.ptr())));
    if (text.starts_with("&#65279;")) text.erase(0, 8);  // a byte-order mark left in
  } else {
    text.assign(view.data, size_t(view.size));
  }
  ORV_CHARSET parse = keepBytes ? ORV_CHARSET_BYTES : ORV_CHARSET_UTF8;

  OrvHtml doc;
  OrvWebPageVisibleNodes nodes;
  std::vector<std::vector<Piece>> classes;
  {
    py::gil_scoped_release released;
    if (doc.Open(text.data(), long(text.size()), parse) == 0) {
      nodes.ClassifyNodes(doc.root);
      for (int c = 0; c < nodes.GetClassCount(); c++) {
        void* handle = nodes.FetchClass(c);
        auto& texts = classes.emplace_back();
        for (int i = 0; i < nodes.GetNodesCount(handle); i++) {
          var_item* item = nullptr;
          if (nodes.FetchNode(handle, i, item))
            texts.emplace_back(item->text, MeasuredLen(item->text, item->text_len));
        }
      }
    }
  }
  auto toList = [keepBytes](const std::vector<Piece>& texts) {
    py::list list(texts.size());
    for (size_t i = 0; i < texts.size(); i++)
      PyList_SET_ITEM(list.ptr(), Py_ssize_t(i),
                      MakeText(texts[i].first, texts[i].second, keepBytes).release().ptr());
    return list;
  };
  py::list blocks;
  for (size_t c = 0; c + 1 < classes.size(); c++) blocks.append(toList(classes[c]));
  py::list all = classes.empty() ? py::list() : toList(classes.back());
  return py::make_tuple(blocks, all);
}

}  // namespace

void AddNodes(py::module_& m) {
  m.def("visible_nodes", &VisibleNodes, py::arg("page"), py::arg("charset") = "utf-8",
        R"(The visible texts of an HTML page: (blocks, page), where blocks holds one list of
texts per repeated block and page every visible text, grouped by depth.

page: str or bytes. charset "utf-8": a bytes page is decoded by its declaration,
a str page is read as it is, and texts come back as str. charset "bytes": the
page's bytes (a str page's UTF-8) are kept as they are and texts come back as
bytes.)");
}

}  // namespace orvpy
