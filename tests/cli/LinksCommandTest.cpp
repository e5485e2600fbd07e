#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/RunTool.h"

namespace {

const std::string kPages = R"((.htm\E,.html\E,.phtml\E,.shtml\E,.jsp\E,.php\E,.asp\E,.ksp\E))";
const std::string kImages = R"((.jpg\E,.png\E,.ico\E))";

ToolRun Links(std::vector<std::string> args) {
  args.insert(args.begin(), {ToolPath("orvwebpage"), "links"});
  return RunTool(args, 60);
}

using Classes =
    std::vector<std::pair<std::string, std::vector<std::pair<std::string, std::string>>>>;

Classes FromJson(const std::string& out) {
  Classes classes;
  auto doc = nlohmann::json::parse(out);
  for (const auto& c : doc.at("classes")) {
    auto& entry = classes.emplace_back(c.at("key").get<std::string>(),
                                       std::vector<std::pair<std::string, std::string>>());
    for (const auto& u : c.at("urls"))
      entry.second.emplace_back(u.at("url").get<std::string>(), u.at("label").get<std::string>());
  }
  return classes;
}

const char* const kFiveLinks =
    "http://web.site.test/news/1.html?id=1\tfirst one\n"
    "http://web.site.test/news/2.html?id=2\r\n"
    "\n"
    "  http://web.site.test/about.html\tabout\tus\n"
    "http://web.site.test/img/a.jpg\n"
    "http://other.test/x.html";

TEST(LinksCommand, JsonListsClassesInOrderWithLabels) {
  TempFile file(kFiveLinks);
  ToolRun run = Links({"--json", "--entry", "http://web.site.test/", file.path});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  const Classes expected = {
      {R"(\$;;/)" + kPages + ";^?", {{"http://web.site.test/about.html", "about\tus"}}},
      {R"(\$;/\s;/)" + kPages + ";?id",
       {{"http://web.site.test/news/1.html?id=1", "first one"},
        {"http://web.site.test/news/2.html?id=2", ""}}},
      {R"(\$;/\s;/)" + kImages + ";^?", {{"http://web.site.test/img/a.jpg", ""}}},
      {R"(^\$;;/)" + kPages + ";^?", {{"http://other.test/x.html", ""}}},
  };
  EXPECT_EQ(FromJson(run.out), expected);
}

TEST(LinksCommand, ReadableFormNamesEveryClassAndLink) {
  TempFile file(kFiveLinks);
  ToolRun run = Links({"--entry", "http://web.site.test/", file.path});
  ASSERT_EQ(run.status, 0) << run.err;
  for (const std::string& line :
       {std::string("4 classes, 5 links\n"),
        "class 1 (2 links): " + std::string(R"(\$;/\s;/)") + kPages + ";?id\n",
        std::string("  http://web.site.test/news/1.html?id=1\tfirst one\n"),
        std::string("  http://other.test/x.html\n")})
    EXPECT_NE(run.out.find(line), std::string::npos) << line << "\nin:\n" << run.out;
}

// Without an entry URL hosts sort by their tail; "-" reads stdin (empty here).
TEST(LinksCommand, InputsAndEntry) {
  struct Case {
    std::vector<std::string> args;
    std::string input;
    Classes expected;
  };
  const Case cases[] = {
      {{"--json"},
       "http://a.site.test/x.htm\nhttp://b.site.test/y.html?q=1\n",
       {{"site.test;;/" + kPages + ";^?", {{"http://a.site.test/x.htm", ""}}},
        {"site.test;;/" + kPages + ";?q", {{"http://b.site.test/y.html?q=1", ""}}}}},
      {{"--json", "--entry", "http://www.site.test/"},
       "http://a.site.test/x.htm\n",
       {{R"(\$;;/)" + kPages + ";^?", {{"http://a.site.test/x.htm", ""}}}}},
      {{"--json"}, "", {}},
      {{"--json"}, "\n\r\n\n", {}},
  };
  for (const Case& c : cases) {
    TempFile file(c.input);
    auto args = c.args;
    args.push_back(file.path);
    ToolRun run = Links(args);
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(FromJson(run.out), c.expected) << c.input;
  }
  ToolRun fromStdin = Links({"--json", "-"});
  ASSERT_EQ(fromStdin.status, 0) << fromStdin.err;
  EXPECT_EQ(nlohmann::json::parse(fromStdin.out), nlohmann::json::parse(R"({"classes":[]})"));
}

// Links are bytes: JSON output must not fail on what is not UTF-8.
TEST(LinksCommand, InvalidUtf8StillGivesJson) {
  TempFile file(
      std::string("http://h.test/\xff\xfe/a.htm?\xc3=1\tl\xe4\x80\n"
                  "http://h.test/\xc3\xa4/b.htm?\xc3=2\n"));
  ToolRun run = Links({"--json", file.path});
  ASSERT_EQ(run.status, 0) << run.err;
  Classes classes = FromJson(run.out);
  ASSERT_EQ(classes.size(), 1u);
  ASSERT_EQ(classes[0].second.size(), 2u);
  // Valid sequences stay, an invalid byte shows as U+FFFD.
  EXPECT_EQ(classes[0].second[1].first, "http://h.test/\xc3\xa4/b.htm?\xef\xbf\xbd=2");
}

// --html takes the a elements that have a target, in page order, with their text.
TEST(LinksCommand, HtmlPageGivesItsLinks) {
  std::string deep;
  for (int i = 0; i < 100000; i++) deep += "<div>";
  deep += "<a href='/deep/x.htm'>deep</a>";
  TempFile page(
      "<html><head><title>t</title></head><body>\n"
      "<a href=\"http://www.site.test/news/1.html?id=1\">  First\n  story </a>\n"
      "<a name=\"no-target\">not a link</a>\n"
      "<p><a href='/news/2.html?id=2'><h2>Second</h2><span>summary  text</span></a>\n"
      "<a href=\"http://other.test/\"></a>\n" +
      deep);
  ToolRun run = Links({"--json", "--entry", "http://www.site.test/", "--html", page.path});
  ASSERT_EQ(run.status, 0) << run.err;
  Classes classes = FromJson(run.out);
  std::vector<std::pair<std::string, std::string>> all;
  for (const auto& c : classes)
    for (const auto& link : c.second) all.push_back(link);
  std::sort(all.begin(), all.end());
  const std::vector<std::pair<std::string, std::string>> expected = {
      {"/deep/x.htm", "deep"},
      {"/news/2.html?id=2", "Second summary text"},
      {"http://other.test/", ""},
      {"http://www.site.test/news/1.html?id=1", "First story"},
  };
  EXPECT_EQ(all, expected);
  ASSERT_EQ(classes.size(), 3u);
  EXPECT_EQ(classes[1].first, R"(\$;/\s;/)" + kPages + ";?id");
  ASSERT_EQ(classes[1].second.size(), 2u);
  EXPECT_EQ(classes[1].second[0].first, "http://www.site.test/news/1.html?id=1");
}

TEST(LinksCommand, ErrorsGiveOneLineAndStatus) {
  struct Case {
    std::vector<std::string> args;
    int status;
  };
  const Case cases[] = {
      {{"/nonexistent/dir/links.txt"}, 1},
      {{"--no-such-option"}, 2},
      {{"--entry"}, 2},
      {{"a.txt", "b.txt"}, 2},
      {{"--html", "/nonexistent/page.html"}, 1},
      {{"--html", "http://127.0.0.1:1/"}, 1},
      {{"--html", "page.html", "links.txt"}, 2},
  };
  for (const Case& c : cases) {
    ToolRun run = Links(c.args);
    EXPECT_EQ(run.status, c.status) << c.args[0] << ": " << run.err;
    EXPECT_EQ(run.out, "");
    ASSERT_FALSE(run.err.empty());
    EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
  }
}

}  // namespace
