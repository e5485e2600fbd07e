#include "orvwebpage/OrvBlockTextWalk.h"

#include "orvwebpage/OrvString.h"

OrvBlockTextSink::~OrvBlockTextSink() = default;

void OrvWalkBlockTexts(const OrvVisibleBlocks& blocks, OrvBlockTextSink& sink) {
  OrvString path;
  for (int c = 0; c < blocks.GetClassCount(); c++) {
    blocks.GetPath(c, path);
    sink.OnClass(path.buf ? path.buf : "", int32_t(path.len));
    for (int i = 0; i < blocks.GetTextCount(c); i++) {
      const char* text = nullptr;
      int32_t length = 0;
      if (blocks.GetText(c, i, text, length)) sink.OnText(text, length);
    }
  }
}
