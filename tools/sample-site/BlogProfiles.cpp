// Blogs of today's URL designs and a wiki without pagers, for the site-size
// crawl: page numbers in the path, in a root query, or only behind "next"
// links; summary and whole-post home pages; category and tag archives that
// list the same posts again; relative and .php links. Every page is listed
// in a table made up front, so a request is a lookup.

#include <algorithm>
#include <functional>
#include <map>
#include <string>

#include "SiteBuild.h"
#include "SiteProfile.h"
#include "SiteText.h"

namespace {

std::string Num(int64_t n) { return std::to_string(n); }

// What a target of the site shows.
struct Spot {
  enum Kind { Listing, Post, Plain, Wiki } kind = Plain;
  int archive = 0;  // 0 the main listing, 1.. categories, then tags
  int page = 1;
  int id = 0;
};

enum class PagerStyle {
  Numbers,     // a window of numbers with the first and the last, and "Next »"
  OlderOnly,   // "Older posts" and "Newer posts" only
  ArrowsText,  // "«" and "»" around "Page 3 / 24"
};

// One blog design: where each page lives. Links are written as the site
// writes them (relative ones included); targets are what the server gets.
struct Design {
  std::function<std::string(int archive, int page)> listing;  // absolute target
  std::function<std::string(int id)> post;
  std::function<std::string(const std::string& from, const std::string& to)> href;
  PagerStyle pager = PagerStyle::Numbers;
  bool wholePosts = false;  // the listings show whole posts, not summaries
  int posts = 230, perPage = 10, categories = 5, tags = 8;
  std::vector<std::string> extras;  // plain pages linked from every page
};

std::string Absolute(const std::string&, const std::string& to) { return to; }

// The path of `to` relative to the directory of `from`; both absolute.
std::string Relative(const std::string& from, const std::string& to) {
  std::string dir = from.substr(0, from.rfind('/') + 1);
  size_t common = 0;
  while (common < dir.size() && common < to.size() && dir[common] == to[common]) ++common;
  common = dir.rfind('/', common ? common - 1 : 0) + 1;
  std::string up;
  for (size_t i = common; i < dir.size(); ++i)
    if (dir[i] == '/') up += "../";
  std::string rest = to.substr(common);
  return up + (rest.empty() ? "./" : rest);
}

class Blog : public SiteProfile {
 public:
  Blog(uint64_t siteSeed, Design design) : seed(siteSeed), d(std::move(design)) {
    for (int id = 1; id <= d.posts; ++id) spots[d.post(id)] = {Spot::Post, 0, 1, id};
    for (int a = 0; a <= d.categories + d.tags; ++a)
      for (int n = 1; n <= Pages(a); ++n) spots[d.listing(a, n)] = {Spot::Listing, a, n, 0};
    for (const std::string& extra : d.extras) spots[extra] = {Spot::Plain, 0, 1, 0};
  }

  SitePage Serve(const SiteRequest& request) const override {
    std::string target = request.path;
    std::vector<std::pair<std::string, std::string>> params = request.params;
    std::sort(params.begin(), params.end());
    for (size_t i = 0; i < params.size(); ++i)
      target += (i ? "&" : "?") + params[i].first + "=" + params[i].second;
    auto found = spots.find(target);
    if (found == spots.end()) return NotFound();
    const Spot& spot = found->second;
    if (spot.kind == Spot::Post) return PostPage(target, spot.id);
    if (spot.kind == Spot::Listing) return ListingPage(target, spot.archive, spot.page);
    SitePage page = PlainPage("About this blog");
    AddNote(page, "A blog of made-up posts.");
    Frame(page, target);
    return page;
  }

 private:
  // Posts of an archive, newest first: all of them, those of a category
  // (id modulo the categories), or those of a tag (two tags a post).
  bool InArchive(int archive, int id) const {
    if (archive == 0) return true;
    if (archive <= d.categories) return id % d.categories == archive - 1;
    int tag = archive - d.categories - 1;
    return id % d.tags == tag || (id * 7 + 3) % d.tags == tag;
  }
  std::vector<int> ArchivePosts(int archive) const {
    std::vector<int> ids;
    for (int id = d.posts; id >= 1; --id)
      if (InArchive(archive, id)) ids.push_back(id);
    return ids;
  }
  int Pages(int archive) const {
    int n = int(ArchivePosts(archive).size());
    return std::max(1, (n + d.perPage - 1) / d.perPage);
  }
  std::string Title(int id) const {
    SiteRandom random(seed, 7, uint64_t(id));
    return SiteTitle(random, 4);
  }
  std::string ArchiveName(int archive) const {
    return archive <= d.categories ? "Category " + Num(archive)
                                   : "Tag " + Num(archive - d.categories);
  }

  // Menu, categories, tags and the five newest posts, on every page.
  void Frame(SitePage& page, const std::string& from) const {
    std::vector<SiteLink> menu{{d.href(from, d.listing(0, 1)), "Home", "", ""}};
    for (const std::string& extra : d.extras)
      menu.push_back({d.href(from, extra), "About", "", ""});
    AddLinks(page, "menu", menu);
    std::vector<SiteLink> archives;
    for (int a = 1; a <= d.categories + d.tags; ++a)
      archives.push_back({d.href(from, d.listing(a, 1)), ArchiveName(a), "", ""});
    AddLinks(page, "archives", archives);
    std::vector<SiteLink> recent;
    for (int id = d.posts; id > d.posts - 5 && id >= 1; --id)
      recent.push_back({d.href(from, d.post(id)), Title(id), "", ""});
    AddLinks(page, "recent", recent);
  }

  SitePage PostPage(const std::string& target, int id) const {
    SitePage page = PlainPage(Title(id));
    SiteRandom random(seed, 8, uint64_t(id));
    AddBody(page, random, 3);
    std::vector<SiteLink> filed;
    for (int a = 1; a <= d.categories + d.tags; ++a)
      if (InArchive(a, id))
        filed.push_back({d.href(target, d.listing(a, 1)), ArchiveName(a), "", ""});
    AddLinks(page, "filed", filed);
    Frame(page, target);
    return page;
  }

  SiteBlock Pager(const std::string& from, int archive, int page) const {
    int pages = Pages(archive);
    SiteBlock block{SiteBlockKind::Pager, "pager", {}, {}};
    auto link = [&](int n, const std::string& label) {
      block.links.push_back({d.href(from, d.listing(archive, n)), label, "", ""});
    };
    switch (d.pager) {
      case PagerStyle::Numbers: {
        int low = std::max(1, page - 2), high = std::min(pages, page + 2);
        if (low > 1) link(1, "1");
        for (int n = low; n <= high; ++n)
          n == page ? block.links.push_back({"", Num(n), "current", ""}) : link(n, Num(n));
        if (high < pages) link(pages, Num(pages));
        if (page < pages) link(page + 1, "Next \xC2\xBB");
        break;
      }
      case PagerStyle::OlderOnly:
        if (page > 1) link(page - 1, "Newer posts");
        if (page < pages) link(page + 1, "Older posts");
        break;
      case PagerStyle::ArrowsText:
        if (page > 1) link(page - 1, "\xC2\xAB");
        block.links.push_back({"", "Page " + Num(page) + " / " + Num(pages), "", ""});
        if (page < pages) link(page + 1, "\xC2\xBB");
        break;
    }
    return block;
  }

  SitePage ListingPage(const std::string& target, int archive, int page) const {
    SitePage out = PlainPage(archive ? ArchiveName(archive) : "Latest posts");
    std::vector<int> ids = ArchivePosts(archive);
    size_t first = size_t(page - 1) * size_t(d.perPage);
    for (size_t i = first; i < ids.size() && i < first + size_t(d.perPage); ++i) {
      std::string href = d.href(target, d.post(ids[i]));
      AddLinks(out, "post", {{href, Title(ids[i]), "", ""}});
      SiteRandom random(seed, 8, uint64_t(ids[i]));
      if (d.wholePosts)
        AddBody(out, random, 2);
      else
        AddNote(out, SiteTitle(random, 9));
    }
    if (Pages(archive) > 1) out.blocks.push_back(Pager(target, archive, page));
    Frame(out, target);
    return out;
  }

  uint64_t seed;
  Design d;
  std::map<std::string, Spot> spots;
};

std::string Month(int id) { return Num(1 + id % 12); }

}  // namespace

// /page/N/ pagers of numbers, posts /2024/M/post-N/, a summary home page,
// categories and tags with their own /page/N/.
std::unique_ptr<SiteProfile> MakePathPagerProfile(uint64_t seed) {
  Design d;
  d.listing = [](int archive, int page) {
    std::string base = archive == 0   ? "/"
                       : archive <= 5 ? "/category/c" + Num(archive) + "/"
                                      : "/tag/t" + Num(archive - 5) + "/";
    return page == 1 ? base : base + "page/" + Num(page) + "/";
  };
  d.post = [](int id) { return "/2024/" + Month(id) + "/post-" + Num(id) + "/"; };
  d.href = Absolute;
  d.extras = {"/about/"};
  return std::make_unique<Blog>(seed, std::move(d));
}

// /pageN/ pagers that only say "Older posts", whole posts on the listings,
// posts /2023/M/D/post-N.html, no archives.
std::unique_ptr<SiteProfile> MakeOlderOnlyProfile(uint64_t seed) {
  Design d;
  d.listing = [](int, int page) { return page == 1 ? "/" : "/page" + Num(page) + "/"; };
  d.post = [](int id) {
    return "/2023/" + Month(id) + "/" + Num(1 + id % 28) + "/post-" + Num(id) + ".html";
  };
  d.href = Absolute;
  d.pager = PagerStyle::OlderOnly;
  d.wholePosts = true;
  d.posts = 310, d.perPage = 5, d.categories = 0, d.tags = 0;
  d.extras = {"/about.html"};
  return std::make_unique<Blog>(seed, std::move(d));
}

// index2.html pagers with arrows and "Page 1 / N", relative links
// everywhere, posts post-N.html, categories category/cN.html and cN2.html.
std::unique_ptr<SiteProfile> MakeIndexPagerProfile(uint64_t seed) {
  Design d;
  d.listing = [](int archive, int page) {
    std::string n = page == 1 ? "" : Num(page);
    if (archive == 0) return page == 1 ? std::string("/") : "/index" + n + ".html";
    return "/category/c" + Num(archive) + n + ".html";
  };
  d.post = [](int id) { return "/post-" + Num(id) + ".html"; };
  d.href = Relative;
  d.pager = PagerStyle::ArrowsText;
  d.posts = 260, d.perPage = 8, d.categories = 6, d.tags = 0;
  d.extras = {"/pages/about.html"};
  return std::make_unique<Blog>(seed, std::move(d));
}

// Everything behind a root query: /?paged=N, posts /?p=ID, categories
// /?cat=N with /?cat=N&paged=M; whole posts on the home page; .php pages.
std::unique_ptr<SiteProfile> MakeRootQueryProfile(uint64_t seed) {
  Design d;
  d.listing = [](int archive, int page) {
    std::string out = "/";
    if (archive) out += "?cat=" + Num(archive);
    if (page > 1) out += std::string(archive ? "&" : "?") + "paged=" + Num(page);
    return out;
  };
  d.post = [](int id) { return "/?p=" + Num(100 + id * 3); };
  d.href = Absolute;
  d.wholePosts = true;
  d.posts = 240, d.perPage = 6, d.categories = 4, d.tags = 0;
  d.extras = {"/contact.php"};
  return std::make_unique<Blog>(seed, std::move(d));
}

namespace {

// A wiki: namespaces of pages under /wiki/NS/, each start page listing a few
// of its pages, each page leading to the next of its namespace and to a few
// others anywhere; no pager at all.
class WikiSite : public SiteProfile {
 public:
  explicit WikiSite(uint64_t siteSeed) : seed(siteSeed) {}
  static constexpr int kSpaces = 12, kPerSpace = 35;

  SitePage Serve(const SiteRequest& request) const override {
    if (!request.params.empty()) return NotFound();
    const std::string& path = request.path;
    if (path == "/") return Start(0);
    for (int s = 1; s <= kSpaces; ++s) {
      std::string base = Space(s);
      if (path == base) return Start(s);
      if (path.rfind(base, 0) == 0) {
        std::string rest = path.substr(base.size());
        for (int p = 1; p <= kPerSpace; ++p)
          if (rest == "Item_" + Num(p)) return Item(s, p);
      }
    }
    return NotFound();
  }

 private:
  static std::string Space(int s) { return "/wiki/Space_" + Num(s) + "/"; }
  static std::string ItemPath(int s, int p) { return Space(s) + "Item_" + Num(p); }

  void Sidebar(SitePage& page) const {
    std::vector<SiteLink> spaces{{"/", "Main page", "", ""}};
    for (int s = 1; s <= kSpaces; ++s) spaces.push_back({Space(s), "Space " + Num(s), "", ""});
    AddLinks(page, "sidebar", spaces);
  }

  SitePage Start(int s) const {
    SitePage page = PlainPage(s ? "Space " + Num(s) : "Main page");
    AddNote(page, "Start here.");
    if (s) {
      std::vector<SiteLink> items;
      for (int p = 1; p <= kPerSpace; p += 4)
        items.push_back({ItemPath(s, p), "Item " + Num(p), "", ""});
      AddLinks(page, "popular", items);
    }
    Sidebar(page);
    return page;
  }

  SitePage Item(int s, int p) const {
    SiteRandom random(seed, 9, uint64_t(s * 1000 + p));
    SitePage page = PlainPage("Space " + Num(s) + ", item " + Num(p));
    AddBody(page, random, 2);
    std::vector<SiteLink> links{{Space(s), "Space " + Num(s), "", ""}};
    if (p < kPerSpace) links.push_back({ItemPath(s, p + 1), "See also item " + Num(p + 1), "", ""});
    for (int k = 0; k < 4; ++k) {
      int os = int(random.Between(1, kSpaces)), op = int(random.Between(1, kPerSpace));
      links.push_back({ItemPath(os, op), "Item " + Num(op) + " of space " + Num(os), "", ""});
    }
    AddLinks(page, "see-also", links);
    Sidebar(page);
    return page;
  }

  uint64_t seed;
};

}  // namespace

std::unique_ptr<SiteProfile> MakeWikiProfile(uint64_t seed) {
  return std::make_unique<WikiSite>(seed);
}
