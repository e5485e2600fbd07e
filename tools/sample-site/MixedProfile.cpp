// The default site: a news section paged by number, a blog paged by offset,
// a shop in categories, tag pages, help pages and a few static ones, with
// scripts, documents and links to other sites beside them. Its size follows
// the number of pages asked for.
#include <algorithm>
#include <string>
#include <vector>

#include "SiteBuild.h"
#include "SiteListing.h"
#include "SiteProfile.h"
#include "SiteText.h"

namespace {

constexpr int kCategories = 6;
constexpr int kHelpTopics = 20;
const char* const kTags[] = {"market",   "river",   "garden",  "council", "station",  "winter",
                             "harbour",  "museum",  "village", "engine",  "forest",   "bridge",
                             "school",   "season",  "island",  "summer",  "festival", "library",
                             "mountain", "factory", "weather", "journey", "theatre",  "railway"};
constexpr int kTagCount = sizeof(kTags) / sizeof(kTags[0]);

int64_t PagesFor(int64_t items, int64_t perPage) {
  return std::max<int64_t>(1, (items + perPage - 1) / perPage);
}

class Mixed : public SiteProfile {
 public:
  Mixed(uint64_t siteSeed, int64_t target) : seed(siteSeed) {
    target = std::clamp<int64_t>(target, 200, 5000000);
    stories = target * 45 / 100;
    posts = target * 25 / 100;
    int64_t products = target * 22 / 100;

    news.path = "/news";
    news.pages = int(PagesFor(stories, 20));
    news.pastEnd = SiteListing::PastEnd::LastPage;
    news.pager = SiteListing::PagerKind::WindowWithEnds;
    news.window = 4;
    news.linkClass = "page-link";
    news.nextPrev = true;

    blog.path = "/blog";
    blog.pageParam = "start";
    blog.first = 0;
    blog.step = 20;
    blog.pages = int(PagesFor(posts, 20));
    blog.pager = SiteListing::PagerKind::Window;
    blog.window = 3;
    blog.pagerClass = "";
    blog.nextPrev = true;

    // Categories of uneven size.
    SiteRandom random(seed, 100);
    int64_t weights[kCategories], total = 0;
    for (int64_t& w : weights) total += (w = random.Between(1, 6));
    int64_t start = 1;
    for (int c = 0; c < kCategories; ++c) {
      int64_t count = c + 1 == kCategories ? products - (start - 1) : products * weights[c] / total;
      firstSku[c] = start;
      start += std::max<int64_t>(count, 1);
      SiteListing& shop = shops[c];
      shop.path = "/shop";
      shop.fixed = {{"cat", std::to_string(c + 1)}};
      shop.pages = int(PagesFor(std::max<int64_t>(count, 1), 24));
      shop.pager =
          shop.pages <= 12 ? SiteListing::PagerKind::All : SiteListing::PagerKind::WindowWithEnds;
      shop.window = 2;
      shop.pagerClass = "pagination";
      shop.linkClass = "pg";
      shop.currentClass = "pg active";
    }
    firstSku[kCategories] = start;
  }

  SitePage Serve(const SiteRequest& r) const override {
    if (r.params.empty()) return Static(r.path);
    if (int n = news.PageOf(r)) return NewsPage(n);
    if (int n = blog.PageOf(r)) return BlogPage(n);
    for (int c = 0; c < kCategories; ++c)
      if (int n = shops[c].PageOf(r)) return ShopPage(c, n);
    if (int64_t id = Id(r, "/story", "id", stories)) return Story(id);
    if (int64_t id = Id(r, "/post", "pid", posts)) return Post(id);
    if (int64_t id = Id(r, "/product", "sku", firstSku[kCategories] - 1)) return Product(id);
    if (int64_t id = Id(r, "/help", "topic", kHelpTopics)) return Help(id);
    if (r.path == "/tag" && r.HasExactly({"name"}))
      for (int t = 0; t < kTagCount; ++t)
        if (*r.Param("name") == kTags[t]) return Tag(t);
    return NotFound();
  }

 private:
  static int64_t Id(const SiteRequest& r, const char* path, const char* name, int64_t count) {
    if (r.path != path || !r.HasExactly({name})) return 0;
    int64_t id = ParseCount(r.Param(name));
    return id >= 1 && id <= count ? id : 0;
  }
  static SiteLink Link(const std::string& href, const std::string& label,
                       const std::string& note = "") {
    return {href, label, "", note};
  }
  static std::string StoryHref(int64_t id) { return "/story?id=" + std::to_string(id); }
  static std::string TagHref(int t) { return std::string("/tag?name=") + kTags[t]; }
  std::string StoryTitle(int64_t id) const {
    SiteRandom random(seed, 1, uint64_t(id));
    return SiteTitle(random, 6);
  }

  // What every HTML page of the site carries around its content.
  void Frame(SitePage& page) const {
    page.scripts = {"/static/site.js"};
    AddLinks(page, "menu",
             {Link("/", "Home"), Link(news.Href(1), "News"), Link(blog.Href(1), "Blog"),
              Link(shops[0].Href(1), "Shop"), Link("/help?topic=1", "Help"),
              Link("/about.html", "About"), Link("javascript:void(0)", "Menu")});
  }
  void Footer(SitePage& page) const {
    AddLinks(page, "footer",
             {Link("/contact.htm", "Contact"), Link("/feed.php", "Feed"),
              Link("/files/terms.pdf", "Terms"), Link("mailto:desk@example.test", "Write to us"),
              Link("http://partner.example.test/", "Our partner")});
    AddNote(page, "Sample site, generated.");
  }

  SitePage Static(const std::string& path) const {
    if (path == "/static/site.js" || path == "/static/comments.js")
      return Resource("application/javascript", "document.documentElement.className = 'js';\n");
    if (path == "/feed.php")
      return Resource("application/rss+xml", "<rss version=\"2.0\"></rss>\n");
    if (path.rfind("/files/", 0) == 0 && path.size() > 11 && path.substr(path.size() - 4) == ".pdf")
      return Resource("application/pdf", "%PDF-1.4\n%%EOF\n");
    if (path == "/about.html" || path == "/contact.htm") {
      SitePage page = PlainPage(path == "/about.html" ? "About us" : "Contact");
      Frame(page);
      AddNote(page, "A small team writes this site.");
      Footer(page);
      return page;
    }
    if (path != "/") return NotFound();
    SitePage page = PlainPage("Sample site");
    Frame(page);
    AddNote(page, "News, a blog and a shop.");
    std::vector<SiteLink> sections;
    for (int c = 0; c < kCategories; ++c)
      sections.push_back(Link(shops[c].Href(1), "Shop section " + std::string(1, char('A' + c))));
    AddLinks(page, "sections", sections);
    std::vector<SiteLink> latest;
    for (int64_t id = 1; id <= std::min<int64_t>(8, stories); ++id)
      latest.push_back(Link(StoryHref(id), StoryTitle(id)));
    AddLinks(page, "latest", latest);
    std::vector<SiteLink> tags;
    for (int t = 0; t < kTagCount; t += 2) tags.push_back(Link(TagHref(t), kTags[t]));
    AddLinks(page, "tags", tags);
    Footer(page);
    return page;
  }

  SitePage NewsPage(int n) const {
    SitePage page = PlainPage("News, page " + std::to_string(n));
    Frame(page);
    std::vector<SiteLink> items;
    for (int64_t id = int64_t(n - 1) * 20 + 1; id <= std::min<int64_t>(int64_t(n) * 20, stories);
         ++id)
      items.push_back(Link(StoryHref(id), StoryTitle(id), std::to_string(id % 28 + 1) + " May"));
    AddLinks(page, "items", items);
    page.blocks.push_back(news.Pager(n));
    Footer(page);
    return page;
  }

  SitePage BlogPage(int n) const {
    SitePage page = PlainPage("Blog");
    Frame(page);
    std::vector<SiteLink> items;
    for (int64_t id = int64_t(n - 1) * 20 + 1; id <= std::min<int64_t>(int64_t(n) * 20, posts);
         ++id) {
      SiteRandom random(seed, 2, uint64_t(id));
      items.push_back(Link("/post?pid=" + std::to_string(id), SiteTitle(random, 4)));
    }
    AddLinks(page, "posts", items);
    page.blocks.push_back(blog.Pager(n));
    Footer(page);
    return page;
  }

  SitePage ShopPage(int c, int n) const {
    SitePage page = PlainPage("Shop section " + std::string(1, char('A' + c)));
    Frame(page);
    std::vector<SiteLink> items;
    int64_t first = firstSku[c] + int64_t(n - 1) * 24;
    for (int64_t sku = first; sku < std::min(first + 24, firstSku[c + 1]); ++sku) {
      SiteRandom random(seed, 3, uint64_t(sku));
      items.push_back(Link("/product?sku=" + std::to_string(sku), SiteTitle(random, 3),
                           std::to_string(random.Between(2, 99)) + ".99 EUR"));
    }
    AddLinks(page, "products", items);
    page.blocks.push_back(shops[c].Pager(n));
    std::vector<SiteLink> others;
    for (int o = 0; o < kCategories; ++o)
      if (o != c)
        others.push_back(Link(shops[o].Href(1), "Section " + std::string(1, char('A' + o))));
    AddLinks(page, "sections", others);
    Footer(page);
    return page;
  }

  SitePage Story(int64_t id) const {
    SiteRandom random(seed, 4, uint64_t(id));
    SitePage page = PlainPage(StoryTitle(id));
    Frame(page);
    AddBody(page, random, int(random.Between(3, 6)));
    std::vector<SiteLink> related;
    for (int i = 0; i < 3; ++i)
      related.push_back(Link(StoryHref(random.Between(1, stories)), "Related story"));
    for (int i = 0; i < 3; ++i)
      related.push_back(Link(TagHref(int(random.Between(0, kTagCount - 1))), "Tag"));
    related.push_back(Link("/files/story-" + std::to_string(id) + ".pdf", "Print version"));
    related.push_back(Link("http://source.example.test/wire/" + std::to_string(id), "Source"));
    AddLinks(page, "related", related);
    Footer(page);
    return page;
  }

  SitePage Post(int64_t id) const {
    SiteRandom random(seed, 5, uint64_t(id));
    SitePage page = PlainPage(SiteTitle(random, 4));
    Frame(page);
    page.scripts.push_back("/static/comments.js");
    AddBody(page, random, int(random.Between(2, 5)));
    AddLinks(page, "more",
             {Link("/post?pid=" + std::to_string(random.Between(1, posts)), "Another post"),
              Link(blog.Href(1), "All posts")});
    Footer(page);
    return page;
  }

  SitePage Product(int64_t sku) const {
    SiteRandom random(seed, 6, uint64_t(sku));
    SitePage page = PlainPage(SiteTitle(random, 3));
    Frame(page);
    AddBody(page, random, 2);
    int c = 0;
    while (c + 1 < kCategories && sku >= firstSku[c + 1]) ++c;
    AddLinks(page, "more",
             {Link(shops[c].Href(1), "Back to the section"),
              Link("/files/sheet-" + std::to_string(sku) + ".pdf", "Data sheet")});
    Footer(page);
    return page;
  }

  SitePage Tag(int t) const {
    SitePage page = PlainPage(std::string("Tagged ") + kTags[t]);
    Frame(page);
    SiteRandom random(seed, 7, uint64_t(t));
    std::vector<SiteLink> items;
    for (int i = 0; i < 25; ++i) {
      int64_t id = random.Between(1, stories);
      items.push_back(Link(StoryHref(id), StoryTitle(id)));
    }
    AddLinks(page, "items", items);
    std::vector<SiteLink> tags;
    for (int o = 0; o < kTagCount; ++o)
      if (o != t) tags.push_back(Link(TagHref(o), kTags[o]));
    AddLinks(page, "tags", tags);
    Footer(page);
    return page;
  }

  SitePage Help(int64_t topic) const {
    SitePage page = PlainPage("Help topic " + std::to_string(topic));
    Frame(page);
    AddNote(page, "Short answers to common questions.");
    std::vector<SiteLink> topics;
    for (int64_t o = 1; o <= kHelpTopics; ++o)
      if (o != topic)
        topics.push_back(Link("/help?topic=" + std::to_string(o), "Topic " + std::to_string(o)));
    AddLinks(page, "topics", topics);
    Footer(page);
    return page;
  }

  uint64_t seed;
  int64_t stories = 0, posts = 0;
  int64_t firstSku[kCategories + 1] = {};
  SiteListing news, blog, shops[kCategories];
};

}  // namespace

std::unique_ptr<SiteProfile> MakeMixedProfile(uint64_t seed, int64_t pages) {
  return std::make_unique<Mixed>(seed, pages);
}
