#include "orvwebpage/OrvLinkHtml.h"

#include "core/OrvMemory.h"
#include "platform/html/OrvDocArena.h"
#include "platform/html/OrvHtmlBuilder.h"

OrvLinkHtml::OrvLinkHtml() = default;

OrvLinkHtml::~OrvLinkHtml() {
  if (arena) OrvDelete(arena);
}

int OrvLinkHtml::Close() {
  root = nullptr;
  if (arena) arena->Reset();
  return 0;
}

int OrvLinkHtml::Open(const char* text, long length, ORV_CHARSET charset, const char* contentType) {
  Close();
  if (!arena) arena = OrvNew<OrvDocArena>();
  int result = OrvBuildHtmlTree(text, length, charset, contentType, *arena, root, true, nullptr,
                                OrvTreeScope::kLinks);
  if (result != 0) Close();
  return result;
}

int OrvLinkHtml::Stream(const char* text, long length, ORV_CHARSET charset, const char* contentType,
                        const OrvLinkSink& sink) {
  Close();
  if (!arena) arena = OrvNew<OrvDocArena>();
  int result = OrvBuildHtmlTree(text, length, charset, contentType, *arena, root, true, nullptr,
                                OrvTreeScope::kLinks, sink.take ? &sink : nullptr);
  Close();
  return result;
}
