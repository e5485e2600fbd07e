// orvwebpage.page_links and resolve_url: the links of a page resolved as a
// browser resolves them.

#include <string>
#include <utility>
#include <vector>

#include "Bindings.h"
#include "PyPage.h"
#include "PyText.h"
#include "orvwebpage/OrvPageLinks.h"

namespace orvpy {
namespace {

PyTypeObject* pageLinkType = nullptr;

py::list PageLinks(const py::object& page, const py::object& url, const std::string& charset) {
  PageForParse parse = PreparePage(page, charset);
  TextView pageUrl = ViewTextOrThrow(url, "url");
  std::string base(pageUrl.data, size_t(pageUrl.size));
  std::vector<std::pair<std::string, std::string>> links;
  {
    py::gil_scoped_release released;
    OrvPageLinks reader;
    reader.Begin(base.data(), long(base.size()));
    reader.AddPage(parse.text.data(), long(parse.text.size()), parse.charset, nullptr);
    reader.End();
    OrvString link, label;
    for (int i = 0; i < reader.GetCount(); i++)
      if (reader.Take(i, link, label))
        links.emplace_back(std::string(link.buf ? link.buf : "", size_t(link.len)),
                           std::string(label.buf ? label.buf : "", size_t(label.len)));
  }
  py::list out(links.size());
  for (size_t i = 0; i < links.size(); i++) {
    py::object link =
        MakeText(links[i].first.data(), Py_ssize_t(links[i].first.size()), parse.keepBytes);
    py::object label =
        MakeText(links[i].second.data(), Py_ssize_t(links[i].second.size()), parse.keepBytes);
    PyObject* record = PyStructSequence_New(pageLinkType);
    if (!record) throw py::error_already_set();
    PyStructSequence_SET_ITEM(record, 0, link.release().ptr());
    PyStructSequence_SET_ITEM(record, 1, label.release().ptr());
    PyList_SET_ITEM(out.ptr(), Py_ssize_t(i), record);
  }
  return out;
}

py::object ResolveUrl(const py::object& base, const py::object& href) {
  TextView baseView = ViewTextOrThrow(base, "base");
  TextView hrefView = ViewTextOrThrow(href, "href");
  OrvString out;
  if (!OrvResolveUrl(baseView.data, long(baseView.size), hrefView.data, long(hrefView.size), out))
    return py::none();
  return MakeText(out, hrefView.isBytes);
}

}  // namespace

void AddPageLinks(py::module_& m) {
  pageLinkType = NewRecordType(m, "PageLink", "A link of a page: its resolved url and its label",
                               {"url", "label"});
  m.def("page_links", &PageLinks, py::arg("page"), py::arg("url"), py::arg("charset") = "utf-8",
        R"(The links of an HTML page: the `a` and `area` elements with an href, in document
order, duplicates kept, each a PageLink(url, label) with the href resolved against
the page's `<base href>` (itself resolved against url) or else url, as a browser
resolves it. Labels are the link's text with blanks folded (an area's alt).
An href that does not resolve, or every href when there is no usable base, is
kept as written. page and charset as for visible_nodes; url is str or bytes.)");
  m.def("resolve_url", &ResolveUrl, py::arg("base"), py::arg("href"),
        R"(href resolved against base as a browser does, or None when there is no
result (a relative href without a usable base). Comes back in href's kind.)");
}

}  // namespace orvpy
