#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

struct Result {
  int status = -1;
  std::string out, err;
};

std::string Quote(const std::string& arg) {
  std::string q = "'";
  for (char c : arg) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// Runs the built tool through the shell with stderr kept in a file.
Result RunOrvwebpage(const std::vector<std::string>& args) {
  char errPath[] = "/tmp/orv-url-test-XXXXXX";
  int fd = mkstemp(errPath);
  EXPECT_GE(fd, 0);
  close(fd);
  std::string command = Quote(std::string(ORV_BIN_DIR) + "/orvwebpage");
  for (const auto& a : args) command += " " + Quote(a);
  command += " 2>" + Quote(errPath) + " </dev/null";
  Result r;
  FILE* pipe = popen(command.c_str(), "r");
  if (!pipe) return r;
  char buffer[4096];
  for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) r.out.append(buffer, n);
  int status = pclose(pipe);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  std::ifstream err(errPath, std::ios::binary);
  r.err.assign(std::istreambuf_iterator<char>(err), std::istreambuf_iterator<char>());
  std::remove(errPath);
  return r;
}

TEST(UrlCommand, JsonFields) {
  Result r = RunOrvwebpage({"url", "--json", " http://h.test/x/y/z.html?b=2&a=1#top ", "h",
                            "http://h.test/p?b=1&a=1&a=2"});
  ASSERT_EQ(r.status, 0) << r.err;
  EXPECT_EQ(r.err, "");
  auto doc = nlohmann::ordered_json::parse(r.out);
  ASSERT_TRUE(doc.is_array());
  ASSERT_EQ(doc.size(), 3u);

  std::vector<std::string> keys;
  for (const auto& item : doc[0].items()) keys.push_back(item.key());
  EXPECT_EQ(keys, (std::vector<std::string>{"url", "scheme", "host", "dirs", "stem", "ext",
                                            "params", "rebuilt", "names"}));
  const auto& first = doc[0];
  EXPECT_EQ(first["url"], "http://h.test/x/y/z.html?b=2&a=1#top");  // trimmed, not rebuilt
  EXPECT_EQ(first["scheme"], "http");
  EXPECT_EQ(first["host"], "h.test");
  EXPECT_EQ(first["dirs"], nlohmann::json::array({"x", "y"}));
  EXPECT_EQ(first["stem"], "z");
  EXPECT_EQ(first["ext"], "html");
  ASSERT_EQ(first["params"].size(), 2u);
  EXPECT_EQ(first["params"][0]["name"], "a");
  EXPECT_EQ(first["params"][0]["value"], "1");
  EXPECT_EQ(first["params"][1]["name"], "b");
  EXPECT_EQ(first["rebuilt"], "http://h.test/x/y/z.html?a=1&b=2");
  EXPECT_EQ(first["names"], "a,b");

  EXPECT_EQ(doc[1]["host"], "");
  EXPECT_EQ(doc[1]["stem"], "h");
  EXPECT_TRUE(doc[1]["dirs"].is_array() && doc[1]["dirs"].empty());
  EXPECT_TRUE(doc[1]["params"].is_array() && doc[1]["params"].empty());
  EXPECT_EQ(doc[1]["rebuilt"], "/h");
  EXPECT_EQ(doc[1]["names"], "[No Query String]");
  EXPECT_EQ(doc[2]["rebuilt"], "http://h.test/p?a=2&a=1&b=1");
}

TEST(UrlCommand, NoSortAndReadableForm) {
  struct Case {
    std::vector<std::string> args;
    std::vector<std::string> wantInOut;
  };
  const std::vector<Case> cases = {
      {{"url", "--no-sort", "--json", "/p?b=2&a=1"},
       {"\"rebuilt\": \"/p?b=2&a=1\"", "\"names\": \"b,a\""}},
      {{"url", "--json", "/p?b=2&a=1"}, {"\"rebuilt\": \"/p?a=1&b=2\"", "\"names\": \"a,b\""}},
      {{"url", "http://h.test/x/y.html?b=2&a=1"},
       {"http://h.test/x/y.html?b=2&a=1", "h.test", "x", "a=1, b=2",
        "http://h.test/x/y.html?a=1&b=2", "a,b"}},
  };
  for (const auto& c : cases) {
    Result r = RunOrvwebpage(c.args);
    EXPECT_EQ(r.status, 0) << r.err;
    for (const auto& want : c.wantInOut)
      EXPECT_NE(r.out.find(want), std::string::npos) << want << "\n" << r.out;
  }
}

TEST(UrlCommand, AnyBytesAreAUrl) {
  // Invalid UTF-8 must not stop the JSON output.
  Result r = RunOrvwebpage({"url", "--json", "http://h.test/\xff\xfe?\xc3=\x80", ""});
  ASSERT_EQ(r.status, 0) << r.err;
  auto doc = nlohmann::json::parse(r.out);
  ASSERT_EQ(doc.size(), 2u);
  EXPECT_EQ(doc[0]["host"], "h.test");
  EXPECT_EQ(doc[0]["params"].size(), 1u);
  EXPECT_EQ(doc[1]["rebuilt"], "/");
}

TEST(UrlCommand, UsageErrors) {
  const std::vector<std::vector<std::string>> cases = {
      {"url", "--bogus", "http://h.test/"},
      {"url"},
      {"url", "--json"},
  };
  for (const auto& args : cases) {
    Result r = RunOrvwebpage(args);
    EXPECT_EQ(r.status, 2) << args.back();
    EXPECT_EQ(r.out, "") << args.back();
    ASSERT_FALSE(r.err.empty()) << args.back();
    EXPECT_EQ(r.err.find('\n'), r.err.size() - 1) << "one line: " << r.err;
  }
}

}  // namespace
