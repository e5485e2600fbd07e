#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "support/LocalServers.h"

// Every test starts from the defaults, with zero counters, and leaves them so.
class HttpTest : public ::testing::Test {
 protected:
  void SetUp() override { OrvHttpLimits::Reset(); }
  void TearDown() override { OrvHttpLimits::Reset(); }

  static void Apply(void (*change)(OrvHttpSettings&)) {
    OrvHttpSettings settings = OrvHttpLimits::Get();
    change(settings);
    OrvHttpLimits::Set(settings);
  }
};

struct Fetched {
  ORV_HTTP_STATUS status = ORV_HTTP_OK;
  int bodyResult = -1;
  std::string body;
  long code = 0;
  double seconds = 0;
};

inline Fetched Fetch(OrvHttp& http, const std::string& url) {
  Fetched out;
  auto start = std::chrono::steady_clock::now();
  out.status = http.Run(const_cast<char*>(url.data()), long(url.size()), ORV_HTTP_GET);
  out.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  OrvString body;
  body = "left over";
  out.bodyResult = http.GetBody(body);
  out.body.assign(body.buf ? body.buf : "", size_t(body.len));
  out.code = http.GetResponseCode();
  return out;
}

inline Fetched Fetch(const std::string& url) {
  OrvHttp http;
  return Fetch(http, url);
}
