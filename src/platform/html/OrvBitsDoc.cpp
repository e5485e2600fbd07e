#include "core/OrvMemory.h"
#include "orvwebpage/OrvHtml.h"
#include "platform/html/OrvDocArena.h"
#include "platform/html/OrvHtmlBuilder.h"

OrvBitsDoc::OrvBitsDoc() : root(nullptr), arena(nullptr) {}

OrvBitsDoc::~OrvBitsDoc() {
  root = nullptr;
  if (arena) OrvDelete(arena);
}

int OrvBitsDoc::Close() {
  root = nullptr;
  if (arena) arena->Reset();
  return 0;
}

int OrvBitsDoc::Build(char* text, long length, ORV_CHARSET charset, const char* contentType) {
  Close();
  if (!arena) arena = OrvNew<OrvDocArena>();
  int result = OrvBuildHtmlTree(text, length, charset, contentType, *arena, root);
  if (result != 0) Close();
  return result;
}

OrvHtml::OrvHtml() = default;
OrvHtml::~OrvHtml() = default;
int OrvHtml::Open(char* text, long length, ORV_CHARSET charset) {
  return Build(text, length, charset);
}
int OrvHtml::Open(char* text, long length, ORV_CHARSET charset, const char* contentType) {
  return Build(text, length, charset, contentType);
}

OrvHtmlDoc::OrvHtmlDoc() = default;
OrvHtmlDoc::~OrvHtmlDoc() = default;
int OrvHtmlDoc::Open(char* text, long length, ORV_CHARSET charset) {
  return Build(text, length, charset);
}
