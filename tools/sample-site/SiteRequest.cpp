#include "SiteRequest.h"

namespace {

int HexValue(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string Decode(const std::string& text, bool plusIsBlank) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '%' && i + 2 < text.size()) {
      int hi = HexValue(text[i + 1]), lo = HexValue(text[i + 2]);
      if (hi >= 0 && lo >= 0) {
        out += char(hi * 16 + lo);
        i += 2;
        continue;
      }
    }
    out += plusIsBlank && c == '+' ? ' ' : c;
  }
  return out;
}

}  // namespace

const std::string* SiteRequest::Param(const std::string& name) const {
  for (const auto& [key, value] : params)
    if (key == name) return &value;
  return nullptr;
}

bool SiteRequest::HasExactly(const std::vector<std::string>& names) const {
  if (params.size() != names.size()) return false;
  for (size_t i = 0; i < names.size(); ++i)
    if (params[i].first != names[i]) return false;
  return true;
}

SiteRequest ParseTarget(const std::string& target) {
  SiteRequest request;
  std::string text = target.substr(0, target.find('#'));
  size_t question = text.find('?');
  request.path = Decode(text.substr(0, question), false);
  if (question == std::string::npos) return request;
  std::string query = text.substr(question + 1);
  size_t start = 0;
  while (start <= query.size()) {
    size_t end = query.find('&', start);
    if (end == std::string::npos) end = query.size();
    std::string pair = query.substr(start, end - start);
    if (!pair.empty()) {
      size_t equals = pair.find('=');
      std::string name = Decode(pair.substr(0, equals), true);
      std::string value = equals == std::string::npos ? "" : Decode(pair.substr(equals + 1), true);
      request.params.emplace_back(name, value);
    }
    start = end + 1;
  }
  return request;
}

int64_t ParseCount(const std::string* text) {
  if (!text || text->empty() || text->size() > 10) return -1;
  if (text->size() > 1 && (*text)[0] == '0') return -1;
  int64_t value = 0;
  for (char c : *text) {
    if (c < '0' || c > '9') return -1;
    value = value * 10 + (c - '0');
  }
  return value <= 2147483647 ? value : -1;
}
