#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "orvwebpage/OrvHttpLimits.h"
#include "size/OrvSiteScope.h"
#include "size/OrvSitemapParse.h"
#include "size/OrvSitemapSize.h"
#include "size/OrvSitemapTotals.h"
#include "support/Cases.h"
#include "support/Gzip.h"
#include "support/LocalServers.h"
#include "support/SampleSite.h"

namespace {

std::vector<std::vector<std::string>> Rows(const std::string& name, size_t width) {
  return ReadCases(ORV_CASES_DIR "/size/" + name, width, true);
}

TEST(SiteScope, SameHostPortAndWww) {
  for (const auto& row : Rows("scope.tsv", 3))
    EXPECT_EQ(OrvIsOnSite(row[0].data(), long(row[0].size()), row[1].data(), long(row[1].size())),
              std::stoi(row[2]))
        << row[0] << " " << row[1];
}

void Collect(const char* loc, int32_t len, void* context) {
  auto* text = static_cast<std::string*>(context);
  if (!text->empty()) *text += ' ';
  text->append(loc, size_t(len));
}

TEST(SitemapParse, XmlTextAndGzip) {
  const char* const kKinds[] = {"none", "urlset", "index", "text"};
  for (const auto& row : Rows("parse.tsv", 5)) {
    std::string body = row[0].rfind("gz:", 0) == 0 ? Gzip(row[0].substr(3)) : row[0];
    OrvSitemapSource source(body.data(), long(body.size()), 1 << 20);
    OrvSitemapParseResult result;
    std::string locs;
    OrvParseSitemap(source, std::stoi(row[1]), Collect, &locs, result);
    std::string problem(result.problem.buf ? result.problem.buf : "");
    if (source.Broken()) problem += "gzip data broken";
    EXPECT_STREQ(kKinds[result.kind], row[2].c_str()) << row[0];
    EXPECT_EQ(locs, row[3]) << row[0];
    EXPECT_EQ(result.cut, int(row[3].size() > 0 && result.locs == std::stoi(row[1]))) << row[0];
    if (row[4].empty())
      EXPECT_EQ(problem, "") << row[0];
    else
      EXPECT_NE(problem.find(row[4]), std::string::npos) << row[0] << ": " << problem;
  }
}

TEST(SitemapTotals, UnreadChildrenAreExtrapolated) {
  for (const auto& row : Rows("totals.tsv", 4)) {
    std::vector<OrvSitemapFile> files;
    std::istringstream in(row[0]);
    for (std::string item; in >> item;) {
      OrvSitemapFile& file = files.emplace_back();
      char parent[8];
      int index, children, answered;
      long long pages;
      sscanf(item.c_str(), "%7[^:]:%d:%d:%lld:%d", parent, &index, &children, &pages, &answered);
      file.parent = parent[0] == '-' ? -1 : atoi(parent);
      file.isIndex = index;
      file.children = children;
      file.pages = pages;
      file.answered = answered;
    }
    int64_t pages, low, high;
    OrvSitemapTotals(files.data(), int32_t(files.size()), pages, low, high);
    EXPECT_EQ(pages, std::stoll(row[1])) << row[0];
    EXPECT_EQ(low, std::stoll(row[2])) << row[0];
    EXPECT_EQ(high, std::stoll(row[3])) << row[0];
  }
}

// Expands the generators of a body: {ROOT}, {URLSET P A B}, {URLS P A B} (its entries
// alone), {INDEX P A B}, {LINES P A B}.
std::string Expand(std::string body, const std::string& root) {
  for (size_t at; (at = body.find('{')) != std::string::npos;) {
    size_t end = body.find('}', at);
    std::istringstream in(body.substr(at + 1, end - at - 1));
    std::string name, path, text;
    long from = 0, to = -1;
    in >> name >> path >> from >> to;
    if (name == "ROOT") text = root;
    if (name == "URLSET") text = "<urlset xmlns=\"http://www.sitemaps.org/schemas/sitemap/0.9\">";
    if (name == "INDEX") text = "<sitemapindex>";
    for (long i = from; i <= to; i++) {
      std::string url = root + path + std::to_string(i);
      if (name == "URLSET" || name == "URLS") text += "<url><loc>" + url + "</loc></url>\n";
      if (name == "INDEX") text += "<sitemap><loc>" + url + ".xml</loc></sitemap>\n";
      if (name == "LINES") text += url + "\n";
    }
    if (name == "URLSET") text += "</urlset>";
    if (name == "INDEX") text += "</sitemapindex>";
    body.replace(at, end - at + 1, text);
  }
  return body;
}

struct Served {
  std::string answer, body;
};

// The bytes a file answers with; rest is what a path ending in * matched.
std::string Prepare(const Served& served, const std::string& rest, const std::string& root) {
  std::string body = served.body;
  for (size_t at; (at = body.find('$')) != std::string::npos;) body.replace(at, 1, rest);
  body = Expand(body, root);
  if (served.answer == "gz") body = Gzip(body);
  if (served.answer == "big") body = std::string(size_t(std::stol(body)) << 20, 'x');
  if (served.answer == "bomb") {
    std::string text = "<urlset><url><loc>" + root + "/1</loc></url>";
    std::string comment = "<!--" + std::string(1017, 'x') + "-->\n";
    for (long i = 0; i < std::stol(body) * 1024; i++) text += comment;
    body = Gzip(text + "</urlset>");
  }
  return body;
}

void Serve(LocalHttpServer& server, std::map<std::string, Served> files, const std::string& root) {
  for (auto& [path, file] : files)
    if (path.back() != '*') file.body = Prepare(file, "", root), file.answer += " ready";
  server.server.Get(".*", [files, root, &server](const httplib::Request& request,
                                                 httplib::Response& response) {
    const Served* served = nullptr;
    std::string rest;
    for (const auto& [path, file] : files) {
      if (path == request.path) served = &file, rest.clear();
      if (!served && path.back() == '*' &&
          request.path.rfind(path.substr(0, path.size() - 1), 0) == 0)
        served = &file, rest = request.path.substr(path.size() - 1);
    }
    if (!served || served->answer.rfind("404", 0) == 0) {
      response.status = 404;
      return;
    }
    if (served->answer.rfind("trickle", 0) == 0) {
      response.set_chunked_content_provider("text/xml", [&server](size_t, httplib::DataSink& sink) {
        return PauseUnlessStopping(server.stopping, 100) && sink.write("<", 1);
      });
      return;
    }
    bool ready = served->answer.find(" ready") != std::string::npos;
    response.set_content(ready ? served->body : Prepare(*served, rest, root), "text/xml");
  });
}

// "N", or "A:B" for a figure that depends on how the parser cuts its input.
bool Within(int64_t value, const std::string& want) {
  size_t colon = want.find(':');
  if (colon == std::string::npos) return value == std::stoll(want);
  return value >= std::stoll(want) && value <= std::stoll(want.substr(colon + 1));
}

TEST(SitemapSize, ServedSites) {
  std::map<std::string, std::vector<std::vector<std::string>>> sites;
  std::vector<std::string> order;
  for (const auto& row : Rows("sites.tsv", 8)) {
    if (!sites.count(row[0])) order.push_back(row[0]);
    sites[row[0]].push_back(row);
  }
  for (const std::string& name : order) {
    LocalHttpServer server;
    ASSERT_TRUE(server.Start());
    std::string root = server.Url("");
    std::map<std::string, Served> files;
    std::vector<std::string> expected;
    for (const auto& row : sites[name]) {
      if (row[1] == "=")
        expected = row;
      else
        files[row[1]] = {row[2], row[3]};
    }
    ASSERT_FALSE(expected.empty()) << name;
    Serve(server, files, root);
    OrvHttpSettings settings;
    settings.requestTimeoutMs = 1500;
    OrvHttpLimits::Set(settings);
    OrvHttpLimits::ResetCounters();
    OrvSitemapSize sitemaps;
    OrvStrArray hints;
    sitemaps.Read(server.Url("/").c_str(), -1, hints, std::stoi(expected[2]));
    OrvHttpLimits::Reset();
    EXPECT_LE(sitemaps.Fetches(), std::stoi(expected[2])) << name;
    EXPECT_LE(server.hits.load(), std::stoi(expected[2])) << name;
    EXPECT_TRUE(Within(sitemaps.Pages(), expected[3])) << name << " " << sitemaps.Pages();
    EXPECT_TRUE(Within(sitemaps.Low(), expected[4])) << name << " " << sitemaps.Low();
    EXPECT_TRUE(Within(sitemaps.High(), expected[5])) << name << " " << sitemaps.High();
    std::string problems;
    for (int32_t i = 0; i < sitemaps.FileCount(); i++)
      problems +=
          std::string("|") + (sitemaps.File(i).problem.buf ? sitemaps.File(i).problem.buf : "");
    std::istringstream want(expected[6]);
    for (std::string part; std::getline(want, part, '|');)
      EXPECT_NE(problems.find(part), std::string::npos) << name << ": " << problems;
    if (expected[6].empty()) {
      EXPECT_EQ(problems.find_first_not_of('|'), std::string::npos) << name << ": " << problems;
    }
  }
}

}  // namespace

namespace {

TEST(SitemapSize, SampleSiteProfiles) {
  for (const auto& row : Rows("profiles.tsv", 7)) {
    SampleSite site({"--profile", row[0]});
    ASSERT_TRUE(site.Ok()) << site.Error();
    OrvHttpLimits::ResetCounters();
    OrvSitemapSize sitemaps;
    OrvStrArray hints;
    sitemaps.Read(site.Url("/").c_str(), -1, hints, std::stoi(row[1]));
    EXPECT_EQ(sitemaps.Pages(), std::stoll(row[2])) << row[0];
    EXPECT_EQ(sitemaps.Low(), std::stoll(row[3])) << row[0];
    EXPECT_EQ(sitemaps.High(), std::stoll(row[4])) << row[0];
    EXPECT_EQ(sitemaps.Fetches(), std::stoi(row[5])) << row[0];
    EXPECT_EQ(int64_t(site.LogLines().size()), sitemaps.Requests()) << row[0];
    bool holds = sitemaps.Low() <= site.TruePages() && site.TruePages() <= sitemaps.High();
    EXPECT_EQ(holds, row[6] == "1") << row[0] << " true " << site.TruePages();
    // The sample for a check is made of listed on-site URLs.
    const OrvStrArray& sample = sitemaps.SampleUrls();
    EXPECT_EQ(sample.count, std::min<int64_t>(64, sitemaps.Pages())) << row[0];
    for (int32_t i = 0; i < sample.count; i++)
      EXPECT_EQ(std::string(sample[i]).rfind(site.Url("/"), 0), 0u) << sample[i];
  }
}

}  // namespace
