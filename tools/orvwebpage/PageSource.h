#pragma once

#include <string>

struct FetchOptions;

// The bytes of a page: fetched when source is an http or https URL, with
// fetch's options when given, else read from that file ("-" for stdin).
// Throws CommandError saying why when neither works (json: for --json).
// contentType, when given, receives the Content-Type a fetched page came with
// (empty for a file), which decides its decoding before the page's own say.
std::string ReadPageSource(const std::string& source, std::string* contentType = nullptr,
                           const FetchOptions* fetch = nullptr, bool json = false);

// Whether source names a page to fetch rather than a file.
bool IsWebUrl(const std::string& source);
