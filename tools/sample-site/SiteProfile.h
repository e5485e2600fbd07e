#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "SitePage.h"
#include "SiteRequest.h"

// One kind of generated site. Serve answers any request target (path and
// query, as sent) and must be safe to call from several threads at once.
class SiteProfile {
 public:
  virtual ~SiteProfile() = default;
  virtual SitePage Serve(const SiteRequest& request) const = 0;
};

struct SiteProfileInfo {
  const char* name;
  const char* summary;  // one line for --help
  bool scalable;        // whether --pages changes it
};

const std::vector<SiteProfileInfo>& SiteProfiles();

// nullptr for an unknown name. pages is the size asked of a scalable profile.
std::unique_ptr<SiteProfile> MakeSiteProfile(const std::string& name, uint64_t seed, int64_t pages);

// The exact profiles, one factory each (ExactProfiles.cpp), and the scalable one.
std::unique_ptr<SiteProfile> MakeExampleProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeLast13Profile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeFail5Profile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeWindowProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeOffsetProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeNoCrawlProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeShapesProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeSingleProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeMixedProfile(uint64_t seed, int64_t pages);
// Today's URL designs (BlogProfiles.cpp).
std::unique_ptr<SiteProfile> MakePathPagerProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeOlderOnlyProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeIndexPagerProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeRootQueryProfile(uint64_t seed);
std::unique_ptr<SiteProfile> MakeWikiProfile(uint64_t seed);
// The sitemap profiles (SitemapProfiles.cpp), by name; nullptr for another.
std::unique_ptr<SiteProfile> MakeSitemapProfile(const std::string& name, uint64_t seed);
