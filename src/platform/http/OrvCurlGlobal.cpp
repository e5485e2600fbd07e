#include "platform/http/OrvCurlGlobal.h"

#include <curl/curl.h>

#include <mutex>

bool OrvCurlGlobalInit() {
  // Never cleaned up: other clients of the process may still hold handles at exit.
  static std::once_flag once;
  static CURLcode result = CURLE_FAILED_INIT;
  std::call_once(once, [] { result = curl_global_init(CURL_GLOBAL_DEFAULT); });
  return result == CURLE_OK;
}
