#include "RunLimits.h"

#include <cctype>
#include <cmath>
#include <cstdlib>

#include "orvwebpage/OrvHttpLimits.h"

bool ParseByteSize(const std::string& text, int64_t& bytes) {
  const char* start = text.c_str();
  char* end = nullptr;
  // strtod alone would take hex, "inf" and "nan": only digits and a point.
  if (text.empty() || !(std::isdigit(static_cast<unsigned char>(text[0])) || text[0] == '.'))
    return false;
  double value = std::strtod(start, &end);
  std::string unit(end);
  for (char& c : unit) c = char(std::toupper(static_cast<unsigned char>(c)));
  static const std::string kUnits = "KMGT";
  double scale = 1;
  if (!unit.empty() && kUnits.find(unit[0]) != std::string::npos) {
    scale = std::pow(1024.0, double(kUnits.find(unit[0]) + 1));
    unit.erase(0, 1);
  }
  if (end == start || (unit != "" && unit != "B" && unit != "IB")) return false;
  double total = value * scale;
  // Far beyond any machine, and still inside int64_t.
  if (!std::isfinite(total) || total > 9.0e18) return false;
  bytes = int64_t(total);
  return true;
}

std::string LimitReason(const char* watchReason) {
  if (watchReason) return watchReason;
  OrvString url, why;
  if (!OrvHttpLimits::GetLastFailure(url, why) || why.len <= 0) return "";
  std::string failure(why.buf, size_t(why.len));
  // robots.txt that a limit kept from being read refuses the page: the
  // limit is what cut the run.
  const std::string robots = "refused by robots.txt (";
  if (failure.rfind(robots, 0) == 0 && failure.back() == ')')
    failure = failure.substr(robots.size(), failure.size() - robots.size() - 1);
  if (failure == "deadline passed") return "deadline";
  if (failure == "memory budget spent") return "memory budget";
  if (failure == "request budget spent") return "request budget";
  return "";
}

std::string LimitFailure(const std::string& reason) {
  if (reason == "deadline") return "deadline passed";
  return reason + " spent";
}
