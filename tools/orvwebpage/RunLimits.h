#pragma once

#include <cstdint>
#include <string>

// Defaults that bound a run on an unknown site. The estimator fetches one
// page per shape of URL plus the probes of each listing, so the sample site's
// default profile (about 12,000 pages) takes 17 requests, and even a site of a
// few thousand pages that needed a request a page would stay well inside
// both, at a third of a second a request. A site that grows
// without end, or whose pages hold millions of links, stops at these instead
// of running until the machine gives out.
constexpr int64_t kDefaultMaxRequests = 10000;
constexpr double kDefaultDeadlineSeconds = 3600;
constexpr int64_t kDefaultMaxMemory = int64_t(2) << 30;

// A count of bytes as a person writes one: "300000", "512M", "1.5G", "2GiB"
// (K, M, G, T: powers of 1024, either case). False for anything else.
bool ParseByteSize(const std::string& text, int64_t& bytes);

// Why the run bound to the calling thread stopped short: the watch's reason
// when it fired, else the limit the HTTP layer last refused a request for:
// "deadline", "memory budget" or "request budget". Empty when no limit cut
// the run.
std::string LimitReason(const char* watchReason);

// What a run that read nothing says when a limit cut it: "deadline passed",
// "memory budget spent", "request budget spent".
std::string LimitFailure(const std::string& reason);
