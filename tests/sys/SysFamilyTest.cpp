#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <string>

#include "orvwebpage/OrvSys.h"
#include "support/RunTool.h"
#include "sys/SysTestClasses.h"

namespace {

TEST(OrvHandle, DefaultsGiveTheirResultWhateverTheArguments) {
  OrvHandle fresh;
  TestHandle placed;
  placed.Place(42);
  for (OrvHandle* h : {&fresh, static_cast<OrvHandle*>(&placed)})
    for (const ZeroCall& c : kZeroCalls) EXPECT_EQ(c.call(*h), 0) << c.name;
  EXPECT_EQ(zeroByte, 'x');
  EXPECT_EQ(zeroTimes[0] + zeroTimes[1] + zeroTimes[2], 18u);
  EXPECT_EQ(fresh.Open("/dev/null", ORV_FILE_READ), 0);
  EXPECT_EQ(fresh.GetPos() + placed.GetPos(), 42);
  EXPECT_EQ(fresh.GetHandleName().len, 0);
  OrvString ext("kept", -1);
  fresh.GetHandleExt(ext);
  EXPECT_STREQ(ext.buf, "kept");
}

TEST(OrvHandle, CopiesTakePositionAndNameButKeepTheirOwnName) {
  TestHandle source;
  source.Place(42);
  source.GetHandleName() = "source.txt";
  OrvHandle assigned;
  assigned = source;
  OrvHandle constructed(source);
  for (OrvHandle* copy : {&assigned, &constructed}) {
    EXPECT_EQ(copy->GetPos(), 42);
    EXPECT_STREQ(copy->GetHandleName().buf, "source.txt");
    copy->GetHandleName() = "changed";
    EXPECT_STREQ(source.GetHandleName().buf, "source.txt");
  }
}

// Each object answers from its own class's table, copy or not, and GetPos
// from the common base gives the position of any of them.
TEST(OrvHandle, EveryObjectKeepsTheTableOfItsOwnClass) {
  TempFile file("0123456789");
  OrvFile opened;
  ASSERT_EQ(opened.Open(file.path.c_str(), ORV_FILE_READ), 1);
  opened.Seek(5);
  TestClient client;
  client.Place(11);
  OrvHandle assignedFromFile;
  assignedFromFile = opened;
  struct Row {
    std::function<std::unique_ptr<OrvHandle>()> make;
    int isOpen;
    int64_t pos;
  } rows[] = {
      {[&] { return std::make_unique<OrvHandle>(opened); }, 0, 5},
      {[&] { return std::make_unique<OrvHandle>(assignedFromFile); }, 0, 5},
      {[&] { return std::make_unique<OrvHandle>(client); }, 0, 11},
      {[&] { return std::make_unique<TestClient>(client); }, 7, 11},
      {[&] { return std::make_unique<OrvFile>(opened); }, 1, 5},  // closes opened when it goes
  };
  for (const Row& r : rows) {
    std::unique_ptr<OrvHandle> h = r.make();
    EXPECT_EQ(h->IsOpen(), r.isOpen) << &r - rows;
    EXPECT_EQ(h->GetPos(), r.pos) << &r - rows;
  }
  char address[] = "address";
  EXPECT_EQ(client.Open("address", 0) + client.Open(address, 0), 8);  // the default gives 0
}

TEST(OrvServer, CopiesKeepStatePortAndTextOfTheirOwn) {
  TestServer source;
  source.Set(2, 8080, "server");
  source.ReStart();
  TestServer assigned;
  assigned = source;
  TestServer constructed(source);
  for (TestServer* copy : {&assigned, &constructed}) {
    EXPECT_EQ(copy->GetState() + copy->GetListenPort(), 8082);
    EXPECT_EQ(static_cast<OrvThreadPool&>(*copy).GetTaskTotal(), 3);
    copy->Text() = "changed";
    EXPECT_STREQ(source.Text().buf, "server");
  }
}

TEST(OrvSysSmallClasses, CopiesAreMemberWise) {
  // A work directory longer than a first guess at its length, too.
  char base[] = "/tmp/orv-sys-XXXXXX";
  ASSERT_NE(mkdtemp(base), nullptr);
  std::string deep = base;
  for (int i = 0; i < 30; i++) ASSERT_EQ(mkdir((deep += "/directory-name").c_str(), 0700), 0);
  char cwd[4096];
  ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
  const std::string before = cwd;
  for (const std::string& where : {before, deep}) {
    ASSERT_EQ(chdir(where.c_str()), 0);
    OrvDirectory dir;
    EXPECT_EQ(dir.GetWorkDir().buf, where);
  }
  ASSERT_EQ(chdir(before.c_str()), 0);
  for (; deep.size() > sizeof base - 1; deep.resize(deep.rfind('/'))) rmdir(deep.c_str());
  rmdir(base);
  OrvDirectory dir, dirCopy(dir);
  dirCopy.GetWorkDir() = "elsewhere";
  EXPECT_EQ(dir.GetWorkDir().buf, before);
  dir = dirCopy;
  EXPECT_STREQ(dir.GetWorkDir().buf, "elsewhere");

  OrvFileFind find, assigned;
  find.firstWord = 1;
  find.firstText = "a";
  find.secondText = "b";
  find.lastWord = 4;
  OrvFileFind copy(find);
  copy.secondText = "c";
  EXPECT_STREQ(find.secondText.buf, "b");
  assigned = copy;
  EXPECT_EQ(assigned.firstWord * 10 + assigned.lastWord, 14u);
  EXPECT_EQ(std::string(assigned.firstText.buf) + assigned.secondText.buf, "ac");
}

}  // namespace
