// orvwebpage.visible_nodes: the visible texts of a page in classes.

#include <string>
#include <utility>
#include <vector>

#include "Bindings.h"
#include "PyPage.h"
#include "PyText.h"
#include "orvwebpage/OrvBlockTextWalk.h"
#include "orvwebpage/OrvVisibleBlocks.h"
#include "orvwebpage/OrvVisibleHtml.h"

namespace orvpy {
namespace {

using Piece = std::pair<const char*, Py_ssize_t>;

PyTypeObject* blockType = nullptr;

struct TextClass {
  std::string path;
  std::vector<Piece> texts;
};

// Texts stay pieces of the open document until they become Python objects.
class ClassPieces : public OrvBlockTextSink {
 public:
  std::vector<TextClass> classes;
  void OnClass(const char* path, int32_t length) override {
    classes.emplace_back().path.assign(path, size_t(length));
  }
  void OnText(const char* text, int32_t length) override {
    classes.back().texts.emplace_back(text, length);
  }
};

// The classes as texts of the kind the charset asks for, and whether those
// are bytes; the last class is the page.
std::pair<std::vector<py::list>, std::vector<py::object>> ReadClasses(const py::object& page,
                                                                      const std::string& charset,
                                                                      bool& keepBytes) {
  PageForParse parse = PreparePage(page, charset);
  keepBytes = parse.keepBytes;
  std::string& text = parse.text;
  OrvVisibleHtml doc;  // only what visible texts are read from
  OrvVisibleBlocks blocks;
  ClassPieces pieces;
  {
    py::gil_scoped_release released;
    if (doc.Open(text.data(), long(text.size()), parse.charset) == 0) {
      blocks.Read(doc.root);
      OrvWalkBlockTexts(blocks, pieces);
    }
  }
  const std::vector<TextClass>& classes = pieces.classes;
  std::pair<std::vector<py::list>, std::vector<py::object>> out;
  for (const TextClass& c : classes) {
    py::list list(c.texts.size());
    for (size_t i = 0; i < c.texts.size(); i++)
      PyList_SET_ITEM(list.ptr(), Py_ssize_t(i),
                      MakeText(c.texts[i].first, c.texts[i].second, keepBytes).release().ptr());
    out.first.push_back(std::move(list));
    out.second.push_back(MakeText(c.path.data(), Py_ssize_t(c.path.size()), keepBytes));
  }
  return out;
}

py::tuple VisibleNodes(const py::object& page, const std::string& charset) {
  bool keepBytes = false;
  auto [texts, paths] = ReadClasses(page, charset, keepBytes);
  py::list blocks;
  for (size_t c = 0; c + 1 < texts.size(); c++) blocks.append(texts[c]);
  return py::make_tuple(blocks, texts.empty() ? py::list() : texts.back());
}

py::tuple VisibleBlocks(const py::object& page, const std::string& charset) {
  bool keepBytes = false;
  auto [texts, paths] = ReadClasses(page, charset, keepBytes);
  py::list blocks;
  for (size_t c = 0; c + 1 < texts.size(); c++) {
    PyObject* block = PyStructSequence_New(blockType);
    if (!block) throw py::error_already_set();
    PyStructSequence_SET_ITEM(block, 0, paths[c].release().ptr());
    PyStructSequence_SET_ITEM(block, 1, texts[c].release().ptr());
    blocks.append(py::reinterpret_steal<py::object>(block));
  }
  return py::make_tuple(blocks, texts.empty() ? py::list() : texts.back());
}

}  // namespace

void AddNodes(py::module_& m) {
  blockType =
      NewRecordType(m, "Block", "A repeated block of a page: the path of its element and its texts",
                    {"path", "texts"});
  m.def("visible_nodes", &VisibleNodes, py::arg("page"), py::arg("charset") = "utf-8",
        R"(The visible texts of an HTML page: (blocks, page), where blocks holds one list of
texts per repeated block and page every visible text, grouped by depth.

page: str or bytes. charset "utf-8": a bytes page is decoded by its declaration,
a str page is read as it is, and texts come back as str. charset "bytes": the
page's bytes (a str page's UTF-8) are kept as they are and texts come back as
bytes.)");
  m.def("visible_blocks", &VisibleBlocks, py::arg("page"), py::arg("charset") = "utf-8",
        R"(visible_nodes with the place of each block: (blocks, page), where each block is a
Block(path, texts) and path the element that holds the block's texts, from the
root, as a CSS selector writes it ("html > body > div#main > ul.posts").
Texts and paths are of the kind visible_nodes gives for the charset.)");
}

}  // namespace orvpy
