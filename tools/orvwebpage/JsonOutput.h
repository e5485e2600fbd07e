#pragma once

#include <iostream>
#include <nlohmann/json.hpp>

// Prints the one JSON document of a command's --json output. Texts from URLs
// and pages are bytes, not UTF-8: an invalid sequence shows as U+FFFD instead
// of making the dump throw.
template <class Json>
void PrintJson(const Json& doc) {
  std::cout << doc.dump(2, ' ', false, Json::error_handler_t::replace) << "\n";
}
