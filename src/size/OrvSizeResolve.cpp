#include "size/OrvSizeResolve.h"

#include <curl/curl.h>

#include "size/OrvSizeText.h"

int OrvSizeResolve(const char* base, long baseLen, const char* href, long hrefLen, OrvString& out) {
  out.Clear();
  if (!base || !href || baseLen < 0 || hrefLen < 0) return 0;
  OrvSizeText baseText(base, size_t(baseLen)), hrefText(href, size_t(hrefLen));
  // Blanks around an href are no part of it; inner ones are sent encoded.
  while (!hrefText.empty() && (unsigned char)hrefText.back() <= ' ') hrefText.pop_back();
  size_t lead = 0;
  while (lead < hrefText.size() && (unsigned char)hrefText[lead] <= ' ') ++lead;
  hrefText.erase(0, lead);
  if (baseText.find('\0') != OrvSizeText::npos || hrefText.find('\0') != OrvSizeText::npos)
    return 0;
  CURLU* url = curl_url();
  if (!url) return 0;
  char* text = nullptr;
  const unsigned flags = CURLU_URLENCODE | CURLU_ALLOW_SPACE;
  int ok = curl_url_set(url, CURLUPART_URL, baseText.c_str(), flags) == CURLUE_OK &&
           curl_url_set(url, CURLUPART_URL, hrefText.c_str(), flags) == CURLUE_OK &&
           curl_url_get(url, CURLUPART_URL, &text, 0) == CURLUE_OK && text;
  if (ok) out.CopyBuf(text, -1);
  curl_free(text);
  curl_url_cleanup(url);
  return ok;
}
