#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "orvwebpage/OrvWebPageCountEstimate.h"

// What an estimate is made of, read from the estimator after its run, for
// `orvwebpage estimate --explain`.
struct ExplainedShape {
  std::string key;
  std::string url;
  int kind = ORV_PAGE_UNREAD;
  bool read = false;
  long estimate = 0;
  long sightings = 0;
  long pages = 0;    // estimate x sightings, wrapping at 32 bits as the sum does
  int listing = -1;  // into Explanation::listings
};

struct ExplainedListing {
  std::string key;  // of the shape whose page it is
  std::string url;
  std::string param;
  long step = 0;
  long offset = 0;
  std::vector<OrvEstimateProbe> probes;
  long lastPage = -1;
  long urlCount = 0;
};

struct Explanation {
  std::vector<ExplainedShape> shapes;  // largest first, ties in the estimator's order
  std::vector<ExplainedListing> listings;
};

// The words --explain uses for an ORV_PAGE_STATE and an ORV_PROBE_OUTCOME.
const char* KindName(int kind);
const char* OutcomeName(int outcome);

Explanation ReadExplanation(OrvWebPageCountEstimate& estimator);
// One line per shape, then per listing its pager, its probes and its last page.
void PrintExplanation(const Explanation& explanation, std::ostream& out);
// Adds the "shapes" and "listings" arrays.
void AddExplanation(const Explanation& explanation, nlohmann::ordered_json& doc);
