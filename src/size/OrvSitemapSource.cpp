#include "size/OrvSitemapSource.h"

#include <cstring>

OrvSitemapSource::OrvSitemapSource(const char* body, long len, int64_t maxBytes)
    : in(reinterpret_cast<const unsigned char*>(body)),
      inLeft(body && len > 0 ? len : 0),
      cap(maxBytes > 0 ? maxBytes : 0) {
  gzip = inLeft >= 2 && in[0] == 0x1f && in[1] == 0x8b;
  if (gzip) {
    // zlib's own allocator: its few fixed blocks are freed by inflateEnd.
    streamOpen = inflateInit2(&z, 16 + MAX_WBITS) == Z_OK;
    broken = !streamOpen;
  }
}

OrvSitemapSource::~OrvSitemapSource() {
  if (streamOpen) inflateEnd(&z);
}

int32_t OrvSitemapSource::Pull(char* out, int32_t n) {
  if (n <= 0 || ended) return 0;
  int64_t room = cap - produced;
  if (room <= 0) {
    capped = inLeft > 0 || (gzip && !ended);
    ended = 1;
    return 0;
  }
  if (n > room) n = int32_t(room);
  int32_t got = 0;
  if (!gzip) {
    got = int32_t(inLeft < n ? inLeft : n);
    std::memcpy(out, in, size_t(got));
    in += got;
    inLeft -= got;
  } else {
    // Loops only while input is consumed or members restart, so it ends.
    while (got == 0 && !ended) {
      if (inLeft == 0) {
        broken = 1;  // the data stopped inside a member
        ended = 1;
        break;
      }
      uInt feed = uInt(inLeft > (1 << 30) ? (1 << 30) : inLeft);
      z.next_in = const_cast<Bytef*>(in);
      z.avail_in = feed;
      z.next_out = reinterpret_cast<Bytef*>(out);
      z.avail_out = uInt(n);
      int result = inflate(&z, Z_NO_FLUSH);
      int64_t used = int64_t(feed - z.avail_in);
      in += used;
      inLeft -= used;
      got = n - int32_t(z.avail_out);
      if (result == Z_STREAM_END) {
        // Another member may follow; trailing zeros or garbage end the data.
        if (inLeft >= 2 && in[0] == 0x1f && in[1] == 0x8b)
          inflateReset(&z);
        else
          ended = 1;
      } else if (result != Z_OK && !(result == Z_BUF_ERROR && got > 0)) {
        broken = 1;
        ended = 1;
      } else if (got == 0 && used == 0) {
        broken = 1;
        ended = 1;
      }
    }
  }
  if (got == 0 && !gzip) ended = 1;
  produced += got;
  return got;
}

int32_t OrvSitemapSource::Peek(const char*& bytes) {
  if (!peeked) {
    peeked = 1;
    while (headLen < int32_t(sizeof head)) {
      int32_t got = Pull(head + headLen, int32_t(sizeof head) - headLen);
      if (got <= 0) break;
      headLen += got;
    }
  }
  bytes = head + headPos;
  return headLen - headPos;
}

int32_t OrvSitemapSource::Read(char* out, int32_t n) {
  if (n <= 0) return 0;
  if (headPos < headLen) {
    int32_t take = headLen - headPos < n ? headLen - headPos : n;
    std::memcpy(out, head + headPos, size_t(take));
    headPos += take;
    return take;
  }
  return Pull(out, n);
}
