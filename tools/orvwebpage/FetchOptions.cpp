#include "FetchOptions.h"

#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "RunLimits.h"
#include "ShownText.h"

namespace {

// Longer limits than this are no limits for a crawl, and keep the
// conversion to milliseconds far from overflow.
constexpr double kMaxSeconds = 1e6;

}  // namespace

const CLI::Validator kSeconds(
    [](std::string& text) -> std::string {
      double value = 0;
      size_t used = 0;
      try {
        value = std::stod(text, &used);
      } catch (const std::exception&) {
        return "not a number of seconds: " + text;
      }
      if (used != text.size() || !std::isfinite(value) || value <= 0 || value > kMaxSeconds)
        return "seconds must be a number above 0 and at most 1000000: " + text;
      return "";
    },
    "SECONDS");

const CLI::Validator kSecondsOrNone(
    [](std::string& text) -> std::string {
      std::string copy = text;
      if (text == "0" || kSeconds(copy).empty()) return "";
      return "seconds must be 0 (none) or a number above 0 and at most 1000000: " + text;
    },
    "SECONDS");

const CLI::Validator kHeaderText(
    [](std::string& text) -> std::string {
      if (text.size() >= sizeof(OrvHttpSettings{}.userAgent))
        return "at most " + std::to_string(sizeof(OrvHttpSettings{}.userAgent) - 1) + " bytes";
      for (unsigned char c : text)
        if (c < 0x20 || c == 0x7F) return "control characters cannot go into a header";
      return "";
    },
    "TEXT");

const CLI::Validator kHostPatterns(
    [](std::string& text) -> std::string {
      // The library is the judge of a pattern; what it takes is set again
      // when the run starts.
      OrvString cleaned;
      int valid = OrvHttpLimits::SetHosts(text.data(), long(text.size()));
      OrvHttpLimits::GetHosts(cleaned);
      OrvHttpLimits::SetHosts("", 0);
      if (!valid || cleaned.len == 0)
        return "host patterns are HOST, *.DOMAIN or either with :PORT, split by commas: " + text;
      return "";
    },
    "PATTERN[,PATTERN...]");

int32_t Milliseconds(double seconds) {
  double ms = std::ceil(seconds * 1000);
  return ms >= INT32_MAX ? INT32_MAX : static_cast<int32_t>(ms);
}

void AddFetchOptions(CLI::App* app, FetchOptions& options) {
  app->add_option("--timeout", options.timeout, "seconds the request may take (default 30)")
      ->check(kSeconds)
      ->type_name("SECONDS");
  app->add_option("--user-agent", options.userAgent, "User-Agent header to send")
      ->check(kHeaderText)
      ->type_name("TEXT");
}

void AddCrawlOptions(CLI::App* app, CrawlOptions& options) {
  app->add_option("--timeout", options.timeout, "seconds one request may take (default 30)")
      ->check(kSeconds);
  app->add_option("--deadline", options.deadline,
                  "seconds the whole run may take, the page in hand included; 0: none (default "
                  "3600: a site of a few thousand pages takes minutes, one without end stops)")
      ->check(kSecondsOrNone)
      ->type_name("SECONDS");
  app->add_option_function<std::string>(
         "--max-memory",
         [&options](const std::string& text) {
           if (!ParseByteSize(text, options.maxMemory))
             throw CLI::ValidationError("--max-memory",
                                        "a size such as 512M or 2G, or 0 for none: " + text);
         },
         "what the analysis may hold before the crawl stops, in bytes or with K, M, G; 0: none "
         "(default 2G, well below a machine's memory, far above what a page of 100,000 links "
         "needs)")
      ->type_name("SIZE");
  app->add_option("--delay", options.delay, "milliseconds to wait between requests")
      ->transform(WholeNumber(0, INT32_MAX, "MS"));
  app->add_option("--user-agent", options.userAgent, "User-Agent header to send")
      ->check(kHeaderText);
  app->add_option("--hosts", options.hosts,
                  "only send requests to these hosts: HOST, *.DOMAIN, either with :PORT")
      ->check(kHostPatterns);
}

OrvHttpSettings CrawlSettings(const CrawlOptions& options, int64_t maxRequests) {
  OrvHttpSettings settings = OrvHttpLimits::Get();
  settings.maxRequests = maxRequests;
  if (options.timeout > 0) settings.requestTimeoutMs = Milliseconds(options.timeout);
  settings.deadlineMs = options.deadline > 0 ? Milliseconds(options.deadline) : 0;
  settings.maxHeldBytes = options.maxMemory;
  settings.delayMs = options.delay;
  std::snprintf(settings.userAgent, sizeof settings.userAgent, "%s", options.userAgent.c_str());
  settings.obeyRobots = options.ignoreRobots ? 0 : 1;
  return settings;
}

std::string PartialLine(const std::string& url, const std::string& reason, int64_t maxRequests,
                        double deadline, int64_t maxMemory) {
  std::string line = "orvwebpage: partial result for " + ShownText(url) + ": ";
  if (reason == "request budget") {
    line += "the request budget of " + std::to_string(maxRequests) +
            " requests ran out (--max-requests sets it, 0 lifts it)";
  } else if (reason == "deadline") {
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%g", deadline);
    line +=
        std::string("the deadline of ") + seconds + " s passed (--deadline sets it, 0 lifts it)";
  } else {
    // In the units --max-memory takes, so 2G reads as 2 GiB.
    const char* units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    double value = double(maxMemory);
    int unit = 0;
    for (; value >= 1024 && unit < 4; unit++) value /= 1024;
    char budget[48];
    std::snprintf(budget, sizeof budget, "%.4g %s", value, units[unit]);
    line += std::string("the memory budget of ") + budget +
            " was reached (--max-memory sets it, 0 lifts it)";
  }
  return line + "\n";
}

OrvHttpSettings SettingsWith(const FetchOptions& options) {
  OrvHttpSettings settings = OrvHttpLimits::Get();
  if (options.timeout > 0) {
    settings.requestTimeoutMs = Milliseconds(options.timeout);
    // A stalled server is a slow one: the timeout asked for rules.
    if (settings.connectTimeoutMs > settings.requestTimeoutMs)
      settings.connectTimeoutMs = settings.requestTimeoutMs;
  }
  std::snprintf(settings.userAgent, sizeof settings.userAgent, "%s", options.userAgent.c_str());
  return settings;
}

std::string LastFailure(const std::string& fallback) {
  OrvString url, reason;
  if (!OrvHttpLimits::GetLastFailure(url, reason) || reason.len <= 0) return fallback;
  return std::string(reason.buf, size_t(reason.len));
}

CLI::Validator WholeNumber(int64_t least, int64_t most, const std::string& name) {
  return CLI::Validator(
      [least, most](std::string& text) -> std::string {
        std::string range = most == INT64_MAX
                                ? ", at least " + std::to_string(least)
                                : " from " + std::to_string(least) + " to " + std::to_string(most);
        std::string wrong = "must be a whole number" + range + ": " + text;
        char* end = nullptr;
        errno = 0;
        long long whole = std::strtoll(text.c_str(), &end, 10);
        if (text.empty() || *end || errno) {
          // 1e3, 2.0: numbers as people write them, if they are whole.
          double value = std::strtod(text.c_str(), &end);
          if (text.empty() || *end || !std::isfinite(value) || value != std::floor(value) ||
              value < double(least) || value > double(most))
            return wrong;
          whole = static_cast<long long>(value);
        }
        if (whole < least || whole > most) return wrong;
        text = std::to_string(whole);
        return "";
      },
      name);
}
