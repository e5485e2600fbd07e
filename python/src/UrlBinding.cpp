// orvwebpage.Url: the parsed parts of one URL, editable, with its shape keys.

#include <pybind11/stl.h>

#include <algorithm>
#include <vector>

#include "Bindings.h"
#include "PyText.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvWebPageUrl.h"
#include "orvwebpage/OrvWebPageUrlsSearch.h"

namespace orvpy {
namespace {

struct PyUrl {
  OrvWebPageUrl record;
  bool isBytes = false;

  py::object Text(const OrvString& s) const { return MakeText(s, isBytes); }
};

PyUrl MakeUrl(const py::object& text, bool sort) {
  TextView view = ViewTextOrThrow(text, "url");
  PyUrl url;
  url.isBytes = view.isBytes;
  url.record.url.CopyBuf(view.data, long(view.size));
  url.record.Parse(sort ? 1 : 0);
  return url;
}

void SetText(OrvString& field, const py::object& value, const char* what) {
  TextView view = ViewTextOrThrow(value, what);
  field.CopyBuf(view.data, long(view.size));
}

py::list Dirs(const PyUrl& url) {
  py::list dirs;
  for (int32_t i = 0; i < url.record.dirs.count; i++) {
    const char* dir = url.record.dirs[i];
    dirs.append(MakeText(dir, Py_ssize_t(url.record.dirs.GetStringLen(i)), url.isBytes));
  }
  return dirs;
}

void SetDirs(PyUrl& url, const py::iterable& dirs) {
  if (py::isinstance<py::str>(dirs) || py::isinstance<py::bytes>(dirs))
    throw py::type_error("dirs must be a list of texts, not one text");
  std::vector<TextView> views;
  for (py::handle dir : dirs) views.push_back(ViewTextOrThrow(dir, "a directory"));
  url.record.dirs.RemoveAll(0);
  for (const TextView& view : views) url.record.dirs.AddString(view.data, long(view.size));
}

py::list Params(const PyUrl& url) {
  py::list params;
  for (int32_t i = 0; i < url.record.paramCount; i++)
    params.append(
        py::make_tuple(url.Text(url.record.params[i].name), url.Text(url.record.params[i].value)));
  return params;
}

void SetParams(PyUrl& url, const py::iterable& params) {
  std::vector<OrvUrlParam> from;
  for (py::handle item : params) {
    if (!py::isinstance<py::tuple>(item) && !py::isinstance<py::list>(item))
      throw py::type_error("a parameter must be a (name, value) pair");
    py::sequence pair = py::reinterpret_borrow<py::sequence>(item);
    if (pair.size() != 2) throw py::type_error("a parameter must be a (name, value) pair");
    OrvUrlParam& param = from.emplace_back();
    param.name = ToOrv(ViewTextOrThrow(pair[0], "a parameter name"));
    param.value = ToOrv(ViewTextOrThrow(pair[1], "a parameter value"));
  }
  OrvWebPageUrl::AssignParams(url.record.params, url.record.paramCount, url.record.paramCapacity,
                              from.data(), int32_t(from.size()));
}

py::dict Keys(const PyUrl& url, const py::object& entry) {
  OrvUrlFilterExtractor extractor;
  OrvWebPageUrlsSearch search;
  if (!entry.is_none()) {
    TextView view = ViewTextOrThrow(entry, "entry");
    OrvWebPageUrl parsed;
    parsed.url.CopyBuf(view.data, long(view.size));
    parsed.Parse(1);
    extractor.SetEntryHost(parsed.host);
    search.SetEntryUrl(ToOrv(view));
  }
  py::dict keys;
  const char* names[4] = {"host", "path", "extension", "query"};
  OrvString key;
  for (uint8_t level = 0; level < 4; level++) {
    extractor.Extract(level, key, url.record);
    keys[names[level]] = url.Text(key);
  }
  search.SearchUrls(url.record.url, key);
  keys["shape"] = url.Text(key);
  return keys;
}

// The parts as they stand, as bytes, so an edited or bytes Url comes back
// byte for byte: (is_bytes, url, scheme, host, dirs, stem, ext, params).
py::bytes Raw(const OrvString& s) {
  return py::bytes(s.len > 0 ? s.buf : "", size_t(std::max(s.len, 0)));
}

py::tuple GetState(const PyUrl& u) {
  const OrvWebPageUrl& r = u.record;
  py::list dirs, params;
  for (int32_t i = 0; i < r.dirs.count; i++)
    dirs.append(py::bytes(r.dirs[i], size_t(r.dirs.GetStringLen(i))));
  for (int32_t i = 0; i < r.paramCount; i++)
    params.append(py::make_tuple(Raw(r.params[i].name), Raw(r.params[i].value)));
  return py::make_tuple(u.isBytes, Raw(r.url), Raw(r.scheme), Raw(r.host), dirs, Raw(r.stem),
                        Raw(r.ext), params);
}

PyUrl SetState(const py::tuple& state) {
  if (state.size() != 8) throw py::value_error("not the state of a Url");
  PyUrl u;
  u.isBytes = state[0].cast<bool>();
  SetText(u.record.url, state[1], "url");
  SetText(u.record.scheme, state[2], "scheme");
  SetText(u.record.host, state[3], "host");
  SetDirs(u, state[4]);
  SetText(u.record.stem, state[5], "stem");
  SetText(u.record.ext, state[6], "ext");
  SetParams(u, state[7]);
  return u;
}

}  // namespace

void AddUrl(py::module_& m) {
  py::class_<PyUrl>(m, "Url", R"(A URL split into its parts; any text parses.

Url(text, sort=True): `text` is str or bytes; parts come back in the same kind.
sort orders the query parameters by name, as link classification does.)")
      .def(py::init(&MakeUrl), py::arg("text"), py::arg("sort") = true)
      .def_property_readonly(
          "url", [](const PyUrl& u) { return u.Text(u.record.url); },
          "The text: trimmed by the parse, written anew by rebuild()")
      .def_property(
          "scheme", [](const PyUrl& u) { return u.Text(u.record.scheme); },
          [](PyUrl& u, const py::object& v) { SetText(u.record.scheme, v, "scheme"); })
      .def_property(
          "host", [](const PyUrl& u) { return u.Text(u.record.host); },
          [](PyUrl& u, const py::object& v) { SetText(u.record.host, v, "host"); })
      .def_property("dirs", &Dirs, &SetDirs, "Directory segments, in order")
      .def_property(
          "stem", [](const PyUrl& u) { return u.Text(u.record.stem); },
          [](PyUrl& u, const py::object& v) { SetText(u.record.stem, v, "stem"); })
      .def_property(
          "ext", [](const PyUrl& u) { return u.Text(u.record.ext); },
          [](PyUrl& u, const py::object& v) { SetText(u.record.ext, v, "ext"); })
      .def_property("params", &Params, &SetParams, "Query parameters as (name, value) pairs")
      .def_property_readonly(
          "param_names",
          [](const PyUrl& u) {
            OrvString names;
            OrvWebPageUrl::GetParamNames(names, u.record);
            return u.Text(names);
          },
          "The names joined by ',', or '[No Query String]'")
      .def(
          "rebuild",
          [](PyUrl& u) {
            u.record.Rebuild();
            return u.Text(u.record.url);
          },
          "Writes `url` anew from the parts and returns it")
      .def("keys", &Keys, py::arg("entry") = py::none(),
           R"(The shape keys as a dict: 'host', 'path', 'extension' and 'query' of the parts
as they stand (the link-class levels), and 'shape', the search key of `url`'s text.
entry: the entry URL whose domain counts as the site.)")
      .def(py::pickle(&GetState, &SetState))
      .def("__str__", [](const PyUrl& u) { return u.Text(u.record.url); })
      .def("__repr__",
           [](const PyUrl& u) { return py::str("Url({!r})").format(u.Text(u.record.url)); });
}

}  // namespace orvpy
