// The limits a crawl has by default and by choice, against sites that would
// otherwise keep it going: it ends with what it read, says why on stderr and
// in the JSON, and never aborts.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include "support/Cases.h"
#include "support/LocalServers.h"
#include "support/RunTool.h"

namespace {

// The page behind a request target: links whose sets of parameter names are
// all new, so the crawl fetches each.
std::string Page(const std::string& site, const httplib::Request& request) {
  std::string name = request.params.empty() ? "n" : request.params.begin()->first;
  std::ostringstream page;
  page << "<html><body>";
  if (site == "infinite" || (site == "small" && name.size() < 3)) {
    for (char c : {'a', 'b', 'c'}) page << "<a href=\"/p?" << name << c << "=1\">next</a>";
  } else if (site == "huge") {
    for (int i = 0; i < 60000; i++) page << "<a href=\"/p?" << name << "x" << i << "=1\">x</a>";
  } else if (site == "colliding") {
    // "Ab" and "ba" add the same amount to the fixed hash at any position.
    for (uint32_t i = 0; i < 200000; i++) {
      page << "<a href=\"/p?";
      for (int b = 0; b < 18; b++) page << ((i >> b) & 1 ? "ba" : "Ab");
      page << "=1\">x</a>";
    }
  }
  page << "</body></html>";
  return page.str();
}

TEST(RunLimits, EndTheRunWithWhatWasRead) {
  for (const auto& c : ReadCases(ORV_CASES_DIR "/cli/limits.tsv", 6)) {
    const std::string& name = c[0];
    const std::string& site = c[2];
    LocalHttpServer http;
    // Made before the run, so that the entry page comes at once.
    httplib::Request entry;
    entry.params.emplace("n", "1");
    const std::string first = Page(site, entry);
    http.server.Get("/p", [&](const httplib::Request& request, httplib::Response& response) {
      if (request.get_param_value("n") == "1")
        response.set_content(first, "text/html");
      else if (site == "colliding")
        response.status = 404;
      else
        response.set_content(Page(site, request), "text/html");
    });
    ASSERT_TRUE(http.Start());
    std::vector<std::string> args = {ToolPath("orvwebpage"), c[1], "--json"};
    std::istringstream options(c[3]);
    for (std::string option; options >> option;) args.push_back(option);
    args.push_back(http.Url("/p?n=1"));
    ToolRun run = RunTool(args, 300);
    ASSERT_FALSE(run.killed) << name;
    EXPECT_LE(run.seconds, std::stod(c[5])) << name;
    nlohmann::json out = nlohmann::json::parse(run.out, nullptr, false);
    ASSERT_TRUE(out.is_object()) << name << ": " << run.out;
    if (c[4] == "deadline" && run.status == 1 && name == "deadline_in_page") {
      // The deadline can come before the analysis of the entry page counted
      // it: then nothing was read, and the error names the deadline.
      EXPECT_EQ(out.value("error", ""), "deadline passed") << run.out;
      continue;
    }
    EXPECT_EQ(run.status, 0) << name << ": " << run.err;
    if (c[4] == "-") {
      EXPECT_FALSE(out.contains("partial")) << name << ": " << run.out;
      EXPECT_EQ(run.err, "") << name;
    } else {
      EXPECT_EQ(out.value("partial", false), true) << name << ": " << run.out;
      EXPECT_EQ(out.value("reason", ""), c[4]) << name;
      EXPECT_NE(run.err.find("partial result for " + http.Url("/p?n=1")), std::string::npos)
          << name << ": " << run.err;
    }
    // With no option, the default budget is what ended the infinite site.
    if (name == "default_budget") {
      EXPECT_EQ(out.value("requests", 0), 10000);
    }
    EXPECT_GE(out.value(c[1] == "size" ? "pages" : "estimate", 0), 1) << name;
  }
}

}  // namespace
