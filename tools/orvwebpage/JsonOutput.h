#pragma once

#include <iostream>
#include <nlohmann/json.hpp>
#include <string>

// Prints the one JSON document of a command's --json output. Texts from URLs
// and pages are bytes, not UTF-8: an invalid sequence shows as U+FFFD instead
// of making the dump throw. An indent of kOneLine prints the document on one
// line.
constexpr int kOneLine = -1;

template <class Json>
std::string JsonText(const Json& doc, int indent = 2) {
  return doc.dump(indent, ' ', false, Json::error_handler_t::replace) + "\n";
}

template <class Json>
void PrintJson(const Json& doc, int indent = 2) {
  std::cout << JsonText(doc, indent);
}
