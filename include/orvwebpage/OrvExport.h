#pragma once

// The library is built with hidden visibility; only what carries ORV_API is exported.
#define ORV_API __attribute__((visibility("default")))
