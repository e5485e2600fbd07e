// The orvwebpage commands run as a person runs them: one row of
// data/cli/commands.tsv a run, its exit status and exact output; then what
// the table cannot show, the progress line and the header sent.

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <memory>
#include <mutex>
#include <regex>
#include <thread>

#include "orvwebpage/OrvHttpLimits.h"
#include "support/Cases.h"
#include "support/LocalServers.h"
#include "support/SampleSite.h"

namespace {

const std::string kCases = ORV_CASES_DIR "/cli/";

// A field's bytes: {N*text} repeats text, then the case files' escapes.
std::string Text(const std::string& field) {
  static const std::regex repeat(R"(\{(\d+)\*([^}]*)\})");
  std::string text;
  auto rest = field.cbegin();
  for (std::sregex_iterator it(field.begin(), field.end(), repeat), end; it != end; ++it) {
    text.append(rest, (*it)[0].first);
    for (int n = std::stoi((*it)[1]); n > 0; n--) text += (*it)[2];
    rest = (*it)[0].second;
  }
  text.append(rest, field.cend());
  return Unescape(text);
}

// The port and the timings differ from run to run.
std::string Normal(const std::string& text, const std::string& port) {
  static const std::regex seconds(R"(("seconds":|seconds:  )[0-9.e+-]+)");
  std::string out = std::regex_replace(text, seconds, "$1S");
  return port.empty() ? out : std::regex_replace(out, std::regex(":" + port + "\\b"), ":{port}");
}

struct Row {
  std::string name, server, out, err, in;
  int status;
  std::vector<std::string> args;
};

void PrintTo(const Row& row, std::ostream* os) { *os << row.name; }

std::vector<Row> Rows() {
  std::vector<Row> rows;
  for (const auto& f : ReadCases(kCases + "commands.tsv", 7))
    rows.push_back({f[0], f[1], f[3], f[4], f[5], std::stoi(f[2]), {f.begin() + 6, f.end()}});
  return rows;
}

// What a row runs against: the sample site, a socket that answers the same
// bytes to every request, one that never answers, or a port nobody listens on.
struct Server {
  std::unique_ptr<SampleSite> site;
  std::unique_ptr<RawSocketServer> socket;
  std::string port;
  std::atomic<bool> asked{false};  // a request came to the stalled socket
  explicit Server(const std::string& kind) {
    std::string url;
    if (kind == "stall" || kind == "stall SIGINT") {
      socket = std::make_unique<RawSocketServer>([this](int, const std::atomic<bool>& stopping) {
        asked = true;
        PauseUnlessStopping(stopping, 30000);
      });
      if (socket->Start()) url = socket->Url("/");
    } else if (kind.rfind("site ", 0) == 0) {
      site = std::make_unique<SampleSite>(std::vector<std::string>{"--profile", kind.substr(5)});
      url = site->Url();
    } else if (kind == "closed" || kind.rfind("reply ", 0) == 0) {
      std::string reply = kind == "closed" ? "" : Text(kind.substr(6));
      socket = std::make_unique<RawSocketServer>(reply);
      if (socket->Start()) url = socket->Url("/");
      if (kind == "closed") socket.reset();
    }
    if (url.size() > 17) port = url.substr(17, url.find('/', 17) - 17);  // http://127.0.0.1:
  }
};

class Command : public testing::TestWithParam<Row> {};

TEST_P(Command, GivesTheRowsStatusAndOutput) {
  const Row& row = GetParam();
  Server server(row.server);
  ASSERT_EQ(server.port.empty(), row.server.empty()) << "the server did not start";
  std::string stdinText = row.in;
  for (size_t at; (at = stdinText.find("{port}")) != std::string::npos;)
    stdinText.replace(at, 6, server.port);
  TempFile in(Text(stdinText));
  std::vector<std::string> args = {ToolPath("orvwebpage")};
  for (std::string arg : row.args) {
    for (auto [from, to] : {std::pair{"{in}", in.path}, {"{port}", server.port}})
      for (size_t at; (at = arg.find(from)) != std::string::npos;)
        arg.replace(at, std::strlen(from), to);
    args.push_back(Text(arg));
  }
  // "stall SIGINT": Ctrl-C once the tool waits for the stalled server.
  std::thread interrupter;
  auto started = [&](pid_t pid) {
    if (row.server != "stall SIGINT") return;
    interrupter = std::thread([&server, pid] {
      for (int waited = 0; !server.asked && waited < 20000; waited += 5)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
      kill(pid, SIGINT);
    });
  };
  ToolRun run = RunTool(args, 60, false, in.path, started);
  if (interrupter.joinable()) interrupter.join();
  ASSERT_FALSE(run.killed);
  EXPECT_EQ(run.status, row.status) << run.err;
  EXPECT_EQ(Normal(run.out, server.port),
            row.out[0] == '@' ? ReadFile(kCases + row.out.substr(1)) : Text(row.out));
  std::string err = Normal(run.err, server.port), expected = Text(row.err);
  if (expected.ends_with("...")) {
    expected.resize(expected.size() - 3);
    EXPECT_EQ(err.substr(0, expected.size()), expected);
    EXPECT_EQ(err.find('\n'), err.size() - 1) << "one line: " << err;
  } else {
    EXPECT_EQ(err, expected.empty() ? "" : expected + "\n");
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, Command, testing::ValuesIn(Rows()),
                         [](const testing::TestParamInfo<Row>& info) { return info.param.name; });

// Progress is for a person at a terminal (a pipe gets none, as the table
// shows): one line redrawn in place, never as wide as the terminal, naming
// the phase and the URL in hand, wiped at the end.
TEST(EstimateCommand, ProgressLineFitsTheTerminal) {
  SampleSite site({"--profile", "fail5"});
  ASSERT_TRUE(site.Ok()) << site.Error();
  ToolRun run = RunTool({ToolPath("orvwebpage"), "estimate", "--json", site.Url()}, 60, true);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.out.find('\r'), std::string::npos);
  const std::string wipe = "\r\033[K";
  EXPECT_TRUE(run.err.ends_with(wipe)) << run.err;
  bool crawling = false, probing = false, cut = false;
  for (size_t at = 0, end; (end = run.err.find(wipe, at)) != std::string::npos;
       at = end + wipe.size()) {
    std::string line = run.err.substr(at, end - at);
    EXPECT_LT(line.size(), size_t(kTerminalColumns)) << line;
    EXPECT_EQ(line.find('\n'), std::string::npos) << line;
    crawling |= line.find(", crawling  " + site.Url()) != std::string::npos;
    probing |= line.find(", probing a listing  ") != std::string::npos;
    cut |= line.ends_with("...");
  }
  EXPECT_TRUE(crawling && probing && cut) << run.err;
}

TEST(EstimateCommand, SendsTheUserAgentAskedFor) {
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"--user-agent", "OrvTestAgent/1.0 (+loopback)"}, "OrvTestAgent/1.0 (+loopback)"},
      {{}, OrvHttpLimits::DefaultUserAgent()},
  };
  for (const auto& [options, agent] : cases) {
    LocalHttpServer http;
    std::mutex lock;
    std::vector<std::string> agents;
    http.server.Get("/", [&](const httplib::Request& request, httplib::Response& response) {
      std::lock_guard<std::mutex> hold(lock);
      agents.push_back(request.get_header_value("User-Agent"));
      response.set_content("<p>home</p>", "text/html");
    });
    ASSERT_TRUE(http.Start());
    std::vector<std::string> args = {ToolPath("orvwebpage"), "estimate"};
    args.insert(args.end(), options.begin(), options.end());
    args.push_back(http.Url("/"));
    EXPECT_EQ(RunTool(args, 60).status, 0);
    std::lock_guard<std::mutex> hold(lock);  // the tool has ended, so every request was answered
    EXPECT_EQ(agents, std::vector<std::string>{agent});
  }
}

// --jobs N runs N sites at once, never more: a server whose answers take a
// while sees N requests in flight at most, and N at some point.
TEST(SizeCommand, JobsBoundTheSitesInFlight) {
  LocalHttpServer http;
  std::mutex lock;
  int inFlight = 0, most = 0;
  http.server.Get(R"(/.*)", [&](const httplib::Request&, httplib::Response& response) {
    {
      std::lock_guard<std::mutex> hold(lock);
      most = std::max(most, ++inFlight);
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(150));
    std::lock_guard<std::mutex> hold(lock);
    inFlight--;
    response.set_content("<p>home</p>", "text/html");
  });
  ASSERT_TRUE(http.Start());
  std::vector<std::string> args = {ToolPath("orvwebpage"), "size",   "--json",
                                   "--ignore-robots",      "--jobs", "2"};
  for (const char* path : {"/a", "/b", "/c", "/d", "/e"}) args.push_back(http.Url(path));
  ToolRun run = RunTool(args, 60);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 5);
  std::lock_guard<std::mutex> hold(lock);
  EXPECT_EQ(most, 2);
}

}  // namespace
