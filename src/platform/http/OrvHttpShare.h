#pragma once

#include <curl/curl.h>

#include <mutex>

// What the clients of one run share in libcurl: the connection cache (kept
// alive, so that one connection per host serves a whole crawl), DNS answers
// and TLS sessions. Made on first use; safe from any thread.
class OrvHttpShare {
 public:
  OrvHttpShare() = default;
  ~OrvHttpShare();
  OrvHttpShare(const OrvHttpShare&) = delete;
  OrvHttpShare& operator=(const OrvHttpShare&) = delete;

  // The share handle to set on an easy handle for one transfer, NULL when
  // libcurl could not make one (each client then keeps its own connections).
  CURLSH* Get();

 private:
  static void Lock(CURL*, curl_lock_data data, curl_lock_access, void* context);
  static void Unlock(CURL*, curl_lock_data data, void* context);

  std::once_flag made;
  CURLSH* share = nullptr;
  std::mutex locks[CURL_LOCK_DATA_LAST];
};
