// Pages weighed against the memory left: a page heavy in markup but light in
// what is read fits in a small limit, one that would not fit is refused before
// any of it is read.

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "support/Cases.h"
#include "support/RunTool.h"

TEST(PageMemory, FitsOrIsRefusedNeverAborts) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "a sanitizer's shadow memory does not fit an address-space limit";
#endif
  for (const auto& c : ReadCases(ORV_CASES_DIR "/cli/page-memory.tsv", 8)) {
    SCOPED_TRACE(c[0]);
    std::string page;
    for (long i = std::stol(c[2]); i > 0; i--) page += Unescape(c[3]);
    TempFile file(page + Unescape(c[4]));
    std::string command = "ulimit -v " + std::to_string(std::stol(c[5]) * 1024) + " && exec " +
                          ToolPath("orvwebpage") + " " + c[1] + " " + file.path;
    ToolRun run = RunTool({"/bin/sh", "-c", command}, 60);
    EXPECT_EQ(run.status, std::stoi(c[6])) << run.err;
    EXPECT_EQ(run.out.rfind(Unescape(c[7]), 0), 0u) << run.out;
    EXPECT_EQ(run.err.rfind(c[8], 0), 0u) << run.err;
  }
}
