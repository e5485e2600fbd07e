#pragma once

#include <zlib.h>

#include <cstdint>

// The bytes of a fetched sitemap, inflated on the way when they are gzip (by
// their magic bytes, whatever the name or type says), never more than a cap.
class OrvSitemapSource {
 public:
  OrvSitemapSource(const char* body, long len, int64_t maxBytes);
  ~OrvSitemapSource();
  OrvSitemapSource(const OrvSitemapSource&) = delete;
  OrvSitemapSource& operator=(const OrvSitemapSource&) = delete;

  // Up to n bytes into out; 0 at the end, at the cap or at broken gzip data.
  int32_t Read(char* out, int32_t n);
  // The first bytes (up to sizeof head) without consuming them.
  int32_t Peek(const char*& bytes);

  int IsGzip() const { return gzip; }
  int HitCap() const { return capped; }
  int Broken() const { return broken; }
  int64_t Produced() const { return produced; }

 private:
  int32_t Pull(char* out, int32_t n);

  const unsigned char* in;
  int64_t inLeft;
  int64_t cap;
  int64_t produced = 0;
  int gzip = 0, capped = 0, broken = 0, ended = 0, streamOpen = 0;
  z_stream z{};
  char head[512];
  int32_t headLen = 0, headPos = 0, peeked = 0;
};
