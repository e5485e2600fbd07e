#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Cases.h"
#include "support/UrlReference.h"
