#include "orvwebpage/OrvVisibleHtml.h"

#include "core/OrvMemory.h"
#include "platform/html/OrvDocArena.h"
#include "platform/html/OrvHtmlBuilder.h"

OrvVisibleHtml::OrvVisibleHtml() = default;

OrvVisibleHtml::~OrvVisibleHtml() {
  if (arena) OrvDelete(arena);
}

int OrvVisibleHtml::Close() {
  root = nullptr;
  if (arena) arena->Reset();
  return 0;
}

int OrvVisibleHtml::Open(const char* text, long length, ORV_CHARSET charset,
                         const char* contentType) {
  Close();
  if (!arena) arena = OrvNew<OrvDocArena>();
  int result = OrvBuildHtmlTree(text, length, charset, contentType, *arena, root, true, nullptr,
                                OrvTreeScope::kTexts);
  if (result != 0) Close();
  return result;
}
