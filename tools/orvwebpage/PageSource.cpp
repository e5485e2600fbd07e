#include "PageSource.h"

#include <strings.h>

#include <vector>

#include "Command.h"
#include "FetchOptions.h"
#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvString.h"

bool IsWebUrl(const std::string& source) {
  return strncasecmp(source.c_str(), "http://", 7) == 0 ||
         strncasecmp(source.c_str(), "https://", 8) == 0;
}

std::string ReadPageSource(const std::string& source, std::string* contentType,
                           const FetchOptions* fetch, bool json) {
  if (contentType) contentType->clear();
  if (!IsWebUrl(source)) {
    std::string page = ReadInput(source, json);
    CheckTextSize(page.size(), source == "-" ? "the page on stdin" : source);
    return page;
  }
  if (fetch) OrvHttpLimits::Set(SettingsWith(*fetch));
  OrvHttpLimits::ResetCounters();
  OrvHttp http;
  std::vector<char> url(source.begin(), source.end());
  url.push_back('\0');
  ORV_HTTP_STATUS status = http.Run(url.data(), long(source.size()), ORV_HTTP_GET);
  if (status != ORV_HTTP_OK) {
    long code = http.GetResponseCode();
    throw CommandError(source, LastFailure(code ? "HTTP " + std::to_string(code) : "no reply"),
                       json);
  }
  OrvString body, type;
  http.GetBody(body);
  if (contentType && http.GetContentType(type)) contentType->assign(type.buf, size_t(type.len));
  return body.len > 0 ? std::string(body.buf, size_t(body.len)) : std::string();
}
