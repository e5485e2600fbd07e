#pragma once

#include <regex>
#include <string>
#include <vector>

#include "orvwebpage/OrvHttp.h"
#include "support/SampleSite.h"

struct Page {
  ORV_HTTP_STATUS status = ORV_HTTP_NETWORK;
  long code = 0;
  std::string body;
};

inline Page Get(const std::string& url) {
  OrvHttp http;
  Page page;
  page.status = http.Run(const_cast<char*>(url.data()), long(url.size()), ORV_HTTP_GET);
  page.code = http.GetResponseCode();
  OrvString body;
  http.GetBody(body);
  page.body.assign(body.buf ? body.buf : "", size_t(body.len));
  return page;
}

// The targets of a page's links, with &amp; undone, in document order.
inline std::vector<std::string> Hrefs(const std::string& html) {
  static const std::regex href("href=\"([^\"]*)\"");
  std::vector<std::string> out;
  for (std::sregex_iterator it(html.begin(), html.end(), href), end; it != end; ++it)
    out.push_back(std::regex_replace((*it)[1].str(), std::regex("&amp;"), "&"));
  return out;
}

// The labels of links whose whole label is a number, in document order.
inline std::vector<int> NumberLinks(const std::string& html) {
  static const std::regex number("<a href=\"[^\"]*\"[^>]*>([0-9]+)</a>");
  std::vector<int> out;
  for (std::sregex_iterator it(html.begin(), html.end(), number), end; it != end; ++it)
    out.push_back(std::stoi((*it)[1].str()));
  return out;
}
