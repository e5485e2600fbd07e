#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "RunLimits.h"
#include "orvwebpage/OrvHttpLimits.h"

// Seconds above 0, at most 1000000; a number as the user writes one.
extern const CLI::Validator kSeconds;
// Seconds as kSeconds, or 0 for none.
extern const CLI::Validator kSecondsOrNone;
// Text that can go into a request header.
extern const CLI::Validator kHeaderText;
// Host patterns as the HTTP layer takes them.
extern const CLI::Validator kHostPatterns;

// How a command that reads one page fetches it.
struct FetchOptions {
  double timeout = 0;     // seconds for the request; 0: the HTTP layer's default
  std::string userAgent;  // empty: the library's own
};

int32_t Milliseconds(double seconds);

// --timeout and --user-agent, for commands that fetch one page.
void AddFetchOptions(CLI::App* app, FetchOptions& options);

// How a command that crawls a site fetches, its request budget aside.
struct CrawlOptions {
  double timeout = 0;                         // seconds per request; 0: the HTTP layer's default
  double deadline = kDefaultDeadlineSeconds;  // seconds for the whole run; 0: none
  int64_t maxMemory = kDefaultMaxMemory;      // bytes the library may hold; 0: no budget
  int32_t delay = 0;                          // milliseconds between requests
  std::string userAgent;                      // empty: the library's own
  std::string hosts;                          // empty: requests may go anywhere
  bool ignoreRobots = false;
};

// --timeout, --deadline, --max-memory (defaults of RunLimits.h, 0 lifting
// each), --delay, --user-agent and --hosts.
void AddCrawlOptions(CLI::App* app, CrawlOptions& options);

// The settings of a run with those options and that request budget in force.
OrvHttpSettings CrawlSettings(const CrawlOptions& options, int64_t maxRequests);

// The line on stderr for a run a limit cut ("request budget", "deadline",
// "memory budget"): which, and how to lift it.
std::string PartialLine(const std::string& url, const std::string& reason, int64_t maxRequests,
                        double deadline, int64_t maxMemory);

// The settings of the run with those options in force.
OrvHttpSettings SettingsWith(const FetchOptions& options);

// Why the last request of the run failed, in words a user understands; the
// fallback when the run recorded no failure.
std::string LastFailure(const std::string& fallback);

// A whole number from least to most, written as the user likes it ("1000",
// "1e3", "1,000" is not one); the text becomes its digits. name is the value
// name that help shows.
CLI::Validator WholeNumber(int64_t least, int64_t most, const std::string& name);
