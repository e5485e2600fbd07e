#include "SiteProfile.h"

const std::vector<SiteProfileInfo>& SiteProfiles() {
  static const std::vector<SiteProfileInfo> profiles = {
      {"mixed",
       "default: news paged by number, a blog paged by offset, a shop, tags, help; --pages sets "
       "the size",
       true},
      {"example",
       "\"/\" links a 13-page catalogue head (20 URLs a page) and 40 articles; 158 pages", false},
      {"last13", "\"/\" links /list?page=1 of 13 pages; higher numbers show page 13; 14 pages",
       false},
      {"fail5", "\"/\" links /list?page=1 of 5 pages; 404 above 5; 6 pages", false},
      {"window",
       "\"/\" links /list?page=1 of 300 pages, each linking the numbers within 3; 301 pages",
       false},
      {"offset",
       "\"/\" links /list?start=0 of 12 pages by offsets of 20, 240 posts; 404 past the end; 253 "
       "pages",
       false},
      {"nocrawl", "\"/\" is page 1 of 8 whose pager targets /list.php?page=N; 9 pages", false},
      {"shapes",
       "\"/\" links 3 items, a 404, a hub and an article whose link leads further; 8 pages", false},
      {"single", "\"/\" alone, without links; 1 page", false},
      {"pathpager",
       "blog with /page/N/ pagers, /2024/M/post-N/ posts, a summary home page, categories and "
       "tags",
       false},
      {"olderonly", "blog with /pageN/ pagers that only say \"Older posts\", whole posts", false},
      {"indexpager",
       "blog with index2.html pagers, arrows and \"Page 1 / N\", relative links, categories",
       false},
      {"rootquery", "blog behind root queries: /?paged=N, /?p=ID, /?cat=N, whole posts, .php",
       false},
      {"wiki", "wiki of 12 namespaces under /wiki/, links between pages, no pager", false},
      {"sitemap", "60 posts in 6 archives, all in /sitemap.xml, no robots.txt; 67 pages", false},
      {"sitemap-index",
       "1,200 posts in 60 archives; robots.txt names an index of 60 sitemaps; 1,261 pages", false},
      {"sitemap-gzip", "150 posts in 10 archives; robots.txt names a gzip sitemap; 161 pages",
       false},
      {"sitemap-text", "80 posts in 4 archives; robots.txt names a text sitemap; 85 pages", false},
      {"sitemap-robots",
       "100 posts in 10 archives; robots.txt has Disallow lines and two sitemaps; 111 pages",
       false},
      {"sitemap-lies",
       "300 posts in 30 archives; /sitemap.xml lists 100 of them and 100 gone; 331 pages", false},
  };
  return profiles;
}

std::unique_ptr<SiteProfile> MakeSiteProfile(const std::string& name, uint64_t seed,
                                             int64_t pages) {
  if (name == "mixed") return MakeMixedProfile(seed, pages);
  if (name == "example") return MakeExampleProfile(seed);
  if (name == "last13") return MakeLast13Profile(seed);
  if (name == "fail5") return MakeFail5Profile(seed);
  if (name == "window") return MakeWindowProfile(seed);
  if (name == "offset") return MakeOffsetProfile(seed);
  if (name == "nocrawl") return MakeNoCrawlProfile(seed);
  if (name == "shapes") return MakeShapesProfile(seed);
  if (name == "single") return MakeSingleProfile(seed);
  if (name == "pathpager") return MakePathPagerProfile(seed);
  if (name == "olderonly") return MakeOlderOnlyProfile(seed);
  if (name == "indexpager") return MakeIndexPagerProfile(seed);
  if (name == "rootquery") return MakeRootQueryProfile(seed);
  if (name == "wiki") return MakeWikiProfile(seed);
  if (name.rfind("sitemap", 0) == 0) return MakeSitemapProfile(name, seed);
  return nullptr;
}
