// Sites that publish sitemaps, each in another way, for the sitemap part of
// the site size. Posts at /post/N/, archive pages at /archive/K/ linking their
// posts, "/" linking the archive pages: 1 + archives + posts pages in all.
// Sitemaps and robots.txt are resources, not pages.
#include <zlib.h>

#include <string>

#include "SiteBuild.h"
#include "SiteProfile.h"
#include "SiteText.h"

namespace {

enum class SitemapKind { Plain, Index, Gzip, Text, Robots, Lies };

std::string Gzip(const std::string& text) {
  z_stream z{};
  deflateInit2(&z, 9, Z_DEFLATED, 16 + MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&z, uLong(text.size())) + 64, '\0');
  z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  z.avail_in = uInt(text.size());
  z.next_out = reinterpret_cast<Bytef*>(out.data());
  z.avail_out = uInt(out.size());
  deflate(&z, Z_FINISH);
  out.resize(z.total_out);
  deflateEnd(&z);
  return out;
}

// The number N of "<prefix>N/" when it is from 1 to count, else 0.
int64_t NumberIn(const std::string& path, const std::string& prefix, int64_t count) {
  if (path.rfind(prefix, 0) != 0 || path.size() < prefix.size() + 2 || path.back() != '/') return 0;
  std::string digits = path.substr(prefix.size(), path.size() - prefix.size() - 1);
  int64_t n = ParseCount(&digits);
  return n >= 1 && n <= count ? n : 0;
}

class SitemapSite : public SiteProfile {
 public:
  SitemapSite(uint64_t siteSeed, SitemapKind siteKind, int64_t postCount, int64_t postsPerPage)
      : seed(siteSeed),
        kind(siteKind),
        posts(postCount),
        perPage(postsPerPage),
        archives((postCount + postsPerPage - 1) / postsPerPage) {}

  SitePage Serve(const SiteRequest& request) const override {
    const std::string& path = request.path;
    if (!request.params.empty()) return NotFound();
    if (path == "/") return Home();
    if (int64_t k = NumberIn(path, "/archive/", archives)) return Archive(k);
    if (int64_t n = NumberIn(path, "/post/", posts)) return Post(n);
    // Reachable by robots.txt alone, which keeps crawlers out: not counted.
    if (kind == SitemapKind::Robots && NumberIn(path, "/private/", 5)) return PlainPage("Private");
    return Resources(request);
  }

 private:
  SitePage Home() const {
    SitePage page = PlainPage("Archives");
    std::vector<SiteLink> links;
    for (int64_t k = 1; k <= archives; k++)
      links.push_back(
          {"/archive/" + std::to_string(k) + "/", "Archive " + std::to_string(k), "", ""});
    AddLinks(page, "archives", links);
    return page;
  }
  SitePage Archive(int64_t k) const {
    SitePage page = PlainPage("Archive " + std::to_string(k));
    std::vector<SiteLink> links;
    for (int64_t n = (k - 1) * perPage + 1; n <= k * perPage && n <= posts; n++)
      links.push_back({"/post/" + std::to_string(n) + "/", "Post " + std::to_string(n), "", ""});
    AddLinks(page, "posts", links);
    AddLinks(page, "menu", {{"/", "Home", "", ""}});
    return page;
  }
  SitePage Post(int64_t n) const {
    SiteRandom random(seed, 7, uint64_t(n));
    SitePage page = PlainPage(SiteTitle(random, 5));
    AddBody(page, random, 3);
    AddLinks(page, "menu", {{"/", "Home", "", ""}});
    return page;
  }

  // The URLs of the archive pages from..to with their posts; "/" too for from 1.
  std::string Locations(const std::string& root, int64_t from, int64_t to, bool text) const {
    std::string out;
    auto add = [&](const std::string& path) {
      out += text ? root + path + "\n" : "<url><loc>" + root + path + "</loc></url>\n";
    };
    if (from == 1) add("/");
    for (int64_t k = from; k <= to && k <= archives; k++) {
      add("/archive/" + std::to_string(k) + "/");
      for (int64_t n = (k - 1) * perPage + 1; n <= k * perPage && n <= posts; n++)
        add("/post/" + std::to_string(n) + "/");
    }
    return out;
  }
  static std::string UrlSet(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<urlset xmlns=\"http://www.sitemaps.org/schemas/sitemap/0.9\">\n" +
           entries + "</urlset>\n";
  }

  SitePage Resources(const SiteRequest& request) const {
    const std::string& path = request.path;
    const std::string& root = request.root;
    const char* xml = "application/xml";
    switch (kind) {
      case SitemapKind::Plain:
        if (path == "/sitemap.xml")
          return Resource(xml, UrlSet(Locations(root, 1, archives, false)));
        break;
      case SitemapKind::Index:
        if (path == "/robots.txt")
          return Resource("text/plain",
                          "User-agent: *\nSitemap: " + root + "/sitemaps/index.xml\n");
        if (path == "/sitemaps/index.xml") {
          std::string index =
              "<?xml version=\"1.0\"?>\n<sitemapindex "
              "xmlns=\"http://www.sitemaps.org/schemas/sitemap/0.9\">\n";
          for (int64_t k = 1; k <= archives; k++)
            index += "<sitemap><loc>" + root + "/sitemaps/part-" + std::to_string(k) +
                     ".xml</loc></sitemap>\n";
          return Resource(xml, index + "</sitemapindex>\n");
        }
        if (int64_t k = PartOf(path)) return Resource(xml, UrlSet(Locations(root, k, k, false)));
        break;
      case SitemapKind::Gzip:
        if (path == "/robots.txt")
          return Resource("text/plain", "Sitemap: " + root + "/sitemap.xml.gz\n");
        if (path == "/sitemap.xml.gz")
          return Resource("application/gzip", Gzip(UrlSet(Locations(root, 1, archives, false))));
        break;
      case SitemapKind::Text:
        if (path == "/robots.txt")
          return Resource("text/plain", "User-agent: *\nSitemap: " + root + "/sitemap.txt\n");
        if (path == "/sitemap.txt")
          return Resource("text/plain", Locations(root, 1, archives, true));
        break;
      case SitemapKind::Robots:
        if (path == "/robots.txt")
          return Resource("text/plain",
                          "# Two sitemaps: the posts, and the other pages\n"
                          "User-agent: *\nDisallow: /private/\nDisallow: /search\n\n"
                          "Sitemap: " +
                              root +
                              "/sitemap-posts.xml\n"
                              "sitemap:" +
                              root + "/sitemap-pages.xml\n");
        if (path == "/sitemap-posts.xml" || path == "/sitemap-pages.xml") {
          // The same locations, split: posts in one, "/" and the archives in the other.
          std::string all = Locations(root, 1, archives, false), mine;
          bool wantPosts = path == "/sitemap-posts.xml";
          for (size_t at = 0, end; (end = all.find('\n', at)) != std::string::npos; at = end + 1) {
            std::string line = all.substr(at, end - at + 1);
            if ((line.find("/post/") != std::string::npos) == wantPosts) mine += line;
          }
          return Resource(xml, UrlSet(mine));
        }
        break;
      case SitemapKind::Lies:
        // Stale: the first third of the posts, and as many old URLs that are gone.
        if (path == "/sitemap.xml") {
          std::string entries = "<url><loc>" + root + "/</loc></url>\n";
          for (int64_t n = 1; n <= posts / 3; n++) {
            entries += "<url><loc>" + root + "/post/" + std::to_string(n) + "/</loc></url>\n";
            entries += "<url><loc>" + root + "/old/" + std::to_string(n) + "/</loc></url>\n";
          }
          return Resource(xml, UrlSet(entries));
        }
        break;
    }
    return NotFound();
  }

  int64_t PartOf(const std::string& path) const {
    const std::string prefix = "/sitemaps/part-";
    if (path.rfind(prefix, 0) != 0 || path.size() < prefix.size() + 5 ||
        path.compare(path.size() - 4, 4, ".xml") != 0)
      return 0;
    std::string digits = path.substr(prefix.size(), path.size() - prefix.size() - 4);
    int64_t k = ParseCount(&digits);
    return k >= 1 && k <= archives ? k : 0;
  }

  uint64_t seed;
  SitemapKind kind;
  int64_t posts, perPage, archives;
};

}  // namespace

std::unique_ptr<SiteProfile> MakeSitemapProfile(const std::string& name, uint64_t seed) {
  if (name == "sitemap") return std::make_unique<SitemapSite>(seed, SitemapKind::Plain, 60, 10);
  if (name == "sitemap-index")
    return std::make_unique<SitemapSite>(seed, SitemapKind::Index, 1200, 20);
  if (name == "sitemap-gzip")
    return std::make_unique<SitemapSite>(seed, SitemapKind::Gzip, 150, 15);
  if (name == "sitemap-text") return std::make_unique<SitemapSite>(seed, SitemapKind::Text, 80, 20);
  if (name == "sitemap-robots")
    return std::make_unique<SitemapSite>(seed, SitemapKind::Robots, 100, 10);
  if (name == "sitemap-lies")
    return std::make_unique<SitemapSite>(seed, SitemapKind::Lies, 300, 10);
  return nullptr;
}
