// Small sites whose every page is known, for tests that check an estimate or
// a sequence of requests exactly. Each comment gives the true page count.
#include <string>

#include "SiteBuild.h"
#include "SiteListing.h"
#include "SiteProfile.h"
#include "SiteText.h"

namespace {

bool IsRoot(const SiteRequest& request) { return request.path == "/" && request.params.empty(); }

// The id of /<path>?<name>=N for N from 1 to count, else 0.
int64_t IdOf(const SiteRequest& request, const char* path, const char* name, int64_t count) {
  if (request.path != path || !request.HasExactly({name})) return 0;
  int64_t id = ParseCount(request.Param(name));
  return id >= 1 && id <= count ? id : 0;
}

SitePage Article(uint64_t seed, const char* path, const char* name, int64_t id, int64_t count) {
  SiteRandom random(seed, 1, uint64_t(id));
  SitePage page = PlainPage(SiteTitle(random, 5));
  AddBody(page, random, 4);
  std::string base = std::string(path) + "?" + name + "=";
  AddLinks(page, "related", {{base + std::to_string(id % count + 1), "Next article", "", ""}});
  return page;
}

SitePage ListingPage(const SiteListing& listing, int page, const std::string& title) {
  SitePage out = PlainPage(title + ", page " + std::to_string(page));
  std::vector<std::string> entries;
  for (int i = 1; i <= 10; ++i) entries.push_back("Entry " + std::to_string(i) + " of this page");
  AddEntries(out, "entries", entries);
  out.blocks.push_back(listing.Pager(page));
  return out;
}

// A plain entry page "/" whose one link leads to page 1 of a listing at
// /list?page=N, and the listing itself; nothing else. True count: 1 + pages.
class OneListing : public SiteProfile {
 public:
  explicit OneListing(SiteListing site) : listing(std::move(site)) {}
  SitePage Serve(const SiteRequest& request) const override {
    if (IsRoot(request)) {
      SitePage page = PlainPage("A site with one listing");
      AddNote(page, "Everything is in the listing.");
      AddLinks(page, "menu", {{listing.Href(1), "The listing", "", ""}});
      return page;
    }
    int n = listing.PageOf(request);
    return n ? ListingPage(listing, n, "The listing") : NotFound();
  }

 private:
  SiteListing listing;
};

SiteListing NumberListing(int pages, SiteListing::PastEnd pastEnd) {
  SiteListing listing;
  listing.pages = pages;
  listing.pastEnd = pastEnd;
  return listing;
}

// "/" links one catalogue head and 40 articles; the catalogue has 9
// categories of 13 pages each, and every catalogue page links the 12 other
// pages of its category and the heads of the 8 other categories: 20 URLs.
// Pages past 13 show page 13. True count: 1 + 40 + 9 * 13 = 158.
class Example : public SiteProfile {
 public:
  explicit Example(uint64_t siteSeed) : seed(siteSeed) {}
  SitePage Serve(const SiteRequest& request) const override {
    if (IsRoot(request)) {
      SitePage page = PlainPage("Example site");
      AddNote(page, "A catalogue and forty articles.");
      AddLinks(page, "menu", {{Category(1).Href(1), "Catalogue", "", ""}});
      std::vector<SiteLink> articles;
      for (int id = 1; id <= 40; ++id) {
        SiteRandom random(seed, 1, uint64_t(id));
        articles.push_back({"/article?id=" + std::to_string(id), SiteTitle(random, 5), "", ""});
      }
      AddLinks(page, "articles", articles);
      return page;
    }
    if (int64_t id = IdOf(request, "/article", "id", 40))
      return Article(seed, "/article", "id", id, 40);
    for (int cat = 1; cat <= 9; ++cat) {
      SiteListing listing = Category(cat);
      int n = listing.PageOf(request);
      if (!n) continue;
      SitePage page = ListingPage(listing, n, "Category " + std::to_string(cat));
      std::vector<SiteLink> others;
      for (int other = 1; other <= 9; ++other)
        if (other != cat)
          others.push_back({Category(other).Href(1), "Category " + std::to_string(other), "", ""});
      AddLinks(page, "categories", others);
      return page;
    }
    return NotFound();
  }

 private:
  static SiteListing Category(int cat) {
    SiteListing listing = NumberListing(13, SiteListing::PastEnd::LastPage);
    listing.fixed = {{"cat", std::to_string(cat)}};
    return listing;
  }
  uint64_t seed;
};

// "/" links /list?start=0, a listing of 12 pages by offsets 0, 20, ..., 220
// with 20 posts each (/post?pid=1 to 240), answering 404 past its end.
// True count: 1 + 12 + 240 = 253.
class Offsets : public SiteProfile {
 public:
  explicit Offsets(uint64_t siteSeed) : seed(siteSeed) {
    listing.pageParam = "start";
    listing.first = 0;
    listing.step = 20;
    listing.pages = 12;
  }
  SitePage Serve(const SiteRequest& request) const override {
    if (IsRoot(request)) {
      SitePage page = PlainPage("Posts by offset");
      AddLinks(page, "menu", {{listing.Href(1), "All posts", "", ""}});
      return page;
    }
    if (int64_t id = IdOf(request, "/post", "pid", 240))
      return Article(seed, "/post", "pid", id, 240);
    int n = listing.PageOf(request);
    if (!n) return NotFound();
    SitePage page = PlainPage("Posts, page " + std::to_string(n));
    std::vector<SiteLink> posts;
    for (int i = 1; i <= 20; ++i) {
      int64_t id = (n - 1) * 20 + i;
      SiteRandom random(seed, 1, uint64_t(id));
      posts.push_back({"/post?pid=" + std::to_string(id), SiteTitle(random, 5), "", ""});
    }
    AddLinks(page, "items", posts);
    page.blocks.push_back(listing.Pager(n));
    return page;
  }

 private:
  uint64_t seed;
  SiteListing listing;
};

// "/" is itself page 1 of an 8-page listing whose pager targets are
// /list.php?page=N, which no crawler of page shapes follows; pages past 8
// show page 8. "/" has no other link. True count: 1 + 8 = 9.
class NoCrawl : public SiteProfile {
 public:
  NoCrawl() {
    listing.path = "/list.php";
    listing.pages = 8;
    listing.pastEnd = SiteListing::PastEnd::LastPage;
  }
  SitePage Serve(const SiteRequest& request) const override {
    if (IsRoot(request)) return ListingPage(listing, 1, "Old listing");
    int n = listing.PageOf(request);
    return n ? ListingPage(listing, n, "Old listing") : NotFound();
  }

 private:
  SiteListing listing;
};

// "/" links /item?id=1..3 (plain pages without links), /gone?ref=1 (404),
// /hub?x=1 (a plain page linking /gone?ref=2, which would answer) and
// /story?sid=1 (an article linking /secret?k=1, a plain page).
// True count: "/", 3 items, hub, story, gone 2, secret = 8.
class Shapes : public SiteProfile {
 public:
  explicit Shapes(uint64_t siteSeed) : seed(siteSeed) {}
  SitePage Serve(const SiteRequest& request) const override {
    if (IsRoot(request)) {
      SitePage page = PlainPage("Shapes");
      AddLinks(page, "menu",
               {{"/item?id=1", "First item", "", ""},
                {"/item?id=2", "Second item", "", ""},
                {"/item?id=3", "Third item", "", ""},
                {"/gone?ref=1", "A lost page", "", ""},
                {"/hub?x=1", "The hub", "", ""},
                {"/story?sid=1", "A story", "", ""}});
      return page;
    }
    if (int64_t id = IdOf(request, "/item", "id", 3))
      return PlainPage("Item " + std::to_string(id));
    if (IdOf(request, "/gone", "ref", 2) == 2) return PlainPage("Found after all");
    if (IdOf(request, "/hub", "x", 1)) {
      SitePage page = PlainPage("Hub");
      AddLinks(page, "menu", {{"/gone?ref=2", "Another lost page", "", ""}});
      return page;
    }
    if (IdOf(request, "/story", "sid", 1)) {
      SiteRandom random(seed, 7);
      SitePage page = PlainPage("A story");
      AddBody(page, random, 3);
      AddLinks(page, "more", {{"/secret?k=1", "Behind the story", "", ""}});
      return page;
    }
    if (IdOf(request, "/secret", "k", 1)) return PlainPage("Secret");
    return NotFound();
  }

 private:
  uint64_t seed;
};

class Single : public SiteProfile {
 public:
  SitePage Serve(const SiteRequest& request) const override {
    if (!IsRoot(request)) return NotFound();
    SitePage page = PlainPage("One page");
    AddNote(page, "Nothing links anywhere from here.");
    return page;
  }
};

}  // namespace

std::unique_ptr<SiteProfile> MakeExampleProfile(uint64_t seed) {
  return std::make_unique<Example>(seed);
}

// 13 pages; pages past 13 show page 13. True count 14.
std::unique_ptr<SiteProfile> MakeLast13Profile(uint64_t) {
  return std::make_unique<OneListing>(NumberListing(13, SiteListing::PastEnd::LastPage));
}

// 5 pages; 404 past 5. True count 6.
std::unique_ptr<SiteProfile> MakeFail5Profile(uint64_t) {
  return std::make_unique<OneListing>(NumberListing(5, SiteListing::PastEnd::NotFound));
}

// 300 pages; each links the numbers within 3 of its own; 404 past 300. True count 301.
std::unique_ptr<SiteProfile> MakeWindowProfile(uint64_t) {
  SiteListing listing = NumberListing(300, SiteListing::PastEnd::NotFound);
  listing.pager = SiteListing::PagerKind::Window;
  listing.window = 3;
  return std::make_unique<OneListing>(listing);
}

std::unique_ptr<SiteProfile> MakeOffsetProfile(uint64_t seed) {
  return std::make_unique<Offsets>(seed);
}
std::unique_ptr<SiteProfile> MakeNoCrawlProfile(uint64_t) { return std::make_unique<NoCrawl>(); }
std::unique_ptr<SiteProfile> MakeShapesProfile(uint64_t seed) {
  return std::make_unique<Shapes>(seed);
}
std::unique_ptr<SiteProfile> MakeSingleProfile(uint64_t) { return std::make_unique<Single>(); }
