#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/RunTool.h"

namespace {

const std::string kRow1 = "(.htm\\E,.html\\E,.phtml\\E,.shtml\\E,.jsp\\E,.php\\E,.asp\\E,.ksp\\E)";
const std::string kNoExt = "(/\\S\\E,/\\E)";

ToolRun Orv(std::vector<std::string> args) {
  args.insert(args.begin(), ToolPath("orvwebpage"));
  return RunTool(args, 60);
}

TEST(KeysCommand, JsonHoldsEveryLevelAndTheShape) {
  ToolRun run = Orv({"keys", "--json", "--entry", "http://www.site.test/",
                     "http://web.site.test/news/201/a.html?b=1&a=2", "  http://other.test/x.GIF  ",
                     "http://site.test/?p=1"});
  ASSERT_EQ(run.status, 0) << run.err;
  auto doc = nlohmann::json::parse(run.out);
  struct Row {
    std::string url, host, path, extension, query, shape;
  };
  const Row rows[] = {
      // Level keys sort the parameters; the search's shape keeps their order.
      {"http://web.site.test/news/201/a.html?b=1&a=2", "\\$", "/\\s/\\d", "/" + kRow1, "?a;&b",
       "\\$/\\s/\\d/" + kRow1 + "?b;&a"},
      {"http://other.test/x.GIF", "^\\$", "", "/(.flv\\E,.gif\\E)", "^?",
       "^\\$/(.flv\\E,.gif\\E)^?"},
      {"http://site.test/?p=1", "\\$", "", kNoExt, "^?", "\\$" + kNoExt + "^?"},
  };
  ASSERT_EQ(doc.size(), std::size(rows));
  for (size_t i = 0; i < std::size(rows); i++) {
    const auto& r = rows[i];
    EXPECT_EQ(doc[i]["url"], r.url);
    EXPECT_EQ(doc[i]["host"], r.host) << r.url;
    EXPECT_EQ(doc[i]["path"], r.path) << r.url;
    EXPECT_EQ(doc[i]["extension"], r.extension) << r.url;
    EXPECT_EQ(doc[i]["query"], r.query) << r.url;
    EXPECT_EQ(doc[i]["shape"], r.shape) << r.url;
  }
}

TEST(SearchCommand, FindsTheListedUrlsOfTheExamplesShape) {
  TempFile list(
      "http://site.test/news/1/a.html?id=1\r\n"
      "\n"
      "http://site.test/news/2/b.htm?id=2\n"
      "http://site.test/news/x/b.htm?id=2\n"
      "http://www.site.test/news/3/c.php?id=\n"
      "http://elsewhere.test/news/4/d.html?id=4");
  const std::string key = "\\$/\\s/\\d/" + kRow1 + "?id";
  ToolRun json = Orv({"search", "--json", "--entry", "http://www.site.test/", "--example",
                      "http://site.test/news/9/z.html?id=9", list.path});
  ASSERT_EQ(json.status, 0) << json.err;
  auto doc = nlohmann::json::parse(json.out);
  EXPECT_EQ(doc["key"], key);
  EXPECT_EQ(doc["found"], nlohmann::json({"http://site.test/news/1/a.html?id=1",
                                          "http://site.test/news/2/b.htm?id=2",
                                          "http://www.site.test/news/3/c.php?id="}));

  ToolRun readable = Orv({"search", "--entry", "http://www.site.test/", "--example",
                          "http://site.test/news/9/z.html?id=9", list.path});
  ASSERT_EQ(readable.status, 0) << readable.err;
  EXPECT_NE(readable.out.find("key: " + key + "\n"), std::string::npos) << readable.out;
  EXPECT_NE(readable.out.find("3 of 5 URLs found"), std::string::npos) << readable.out;
  EXPECT_NE(readable.out.find("  http://www.site.test/news/3/c.php?id=\n"), std::string::npos);
}

TEST(KeysSearchCommands, BadInputAndUsage) {
  TempFile bytes("\xFF\xFE/\xC3(/x\n\x01\x02?\x80=1\n");
  struct Case {
    std::vector<std::string> args;
    int status;
    bool json;  // stdout must be one JSON document
  };
  const Case cases[] = {
      {{"keys", "--json", "http://h\xFF.test/\xE9/?\xC3=1"}, 0, true},
      {{"keys", "--json", ""}, 0, true},
      {{"search", "--json", "--example", "\xFF\xFE/\xC3(/y", bytes.path}, 0, true},
      {{"search", "--example", "x", "/no/such/file"}, 1, false},
      {{"search", bytes.path}, 2, false},
      {{"keys"}, 2, false},
      {{"keys", "--bogus", "x"}, 2, false},
  };
  for (const auto& c : cases) {
    ToolRun run = Orv(c.args);
    EXPECT_EQ(run.status, c.status) << c.args[0] << " " << c.args.back() << "\n" << run.err;
    if (c.json) {
      EXPECT_NO_THROW(nlohmann::json::parse(run.out)) << run.out;
    } else {
      EXPECT_EQ(run.out, "");
      EXPECT_FALSE(run.err.empty());
    }
  }
  ToolRun found = Orv({"search", "--json", "--example", "\xFF\xFE/\xC3(/y", bytes.path});
  ASSERT_EQ(found.status, 0);
  EXPECT_EQ(nlohmann::json::parse(found.out)["found"].size(), 1u);
}

}  // namespace
