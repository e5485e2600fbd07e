#pragma once

#include <string>

// The bytes of a page: fetched when source is an http or https URL, else
// read from that file ("-" for stdin). Throws CommandError when neither works.
std::string ReadPageSource(const std::string& source);
