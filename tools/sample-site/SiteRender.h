#pragma once

#include <string>

#include "SitePage.h"

// The response body of a page: raw bytes for resources, HTML otherwise.
std::string RenderPage(const SitePage& page);
