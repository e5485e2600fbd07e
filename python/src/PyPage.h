#pragma once

// How a page crosses into the parser, for every call that reads one.

#include <string>

#include "PyText.h"
#include "orvwebpage/OrvHtml.h"

namespace orvpy {

struct PageForParse {
  std::string text;  // a copy: the parser may change it
  ORV_CHARSET charset = ORV_CHARSET_UTF8;
  bool keepBytes = false;  // texts come back as bytes
};

// charset "utf-8": a bytes page is decoded by its declaration, a str page is
// read as it is, texts come back as str. charset "bytes": the page's bytes (a
// str page's UTF-8) are kept and texts come back as bytes. ValueError for any
// other charset, TypeError for a page that is no text.
PageForParse PreparePage(const py::object& page, const std::string& charset);

}  // namespace orvpy
