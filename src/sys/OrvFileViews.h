#pragma once

#include <cstdint>

// The read-only views that OrvFile::Load hands out, kept process-wide so that
// UnLoad only ever unmaps a real view, always whole, and nothing stays mapped
// after its file object is gone. Safe from any thread.

// Maps [offset, offset + length) of fd; NULL on failure. The range must lie
// inside the file.
void* OrvMapFileView(const void* owner, int fd, int64_t offset, uint32_t length);
// Unmaps the view of owner that begins at view; 0 if there is none.
int OrvUnmapFileView(const void* owner, const void* view);
// Unmaps every view of owner.
void OrvUnmapAllFileViews(const void* owner);
// Number of views of owner, and the file offset behind the last byte any of
// them covers (0 without views).
int OrvCountFileViews(const void* owner);
uint64_t OrvFileViewsEnd(const void* owner);
