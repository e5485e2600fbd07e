#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvVisibleBlocks.h"

// Receives the classes of an OrvVisibleBlocks in their order, the page class
// last: for each class OnClass with its path (empty for the page), then
// OnText for each of its texts. A path is good during the call only; a text
// as long as the blocks' own texts are.
class ORV_API OrvBlockTextSink {
 public:
  virtual ~OrvBlockTextSink();
  virtual void OnClass(const char* path, int32_t length) = 0;
  virtual void OnText(const char* text, int32_t length) = 0;
};

ORV_API void OrvWalkBlockTexts(const OrvVisibleBlocks& blocks, OrvBlockTextSink& sink);
