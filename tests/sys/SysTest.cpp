#include <fcntl.h>
#include <unistd.h>

#include <memory>

#include "orvwebpage/OrvSys.h"
#include "support/Cases.h"
#include "support/RunTool.h"

namespace {

struct TestFile : OrvFile {
  int Descriptor() const { return fd; }
};

// Every operation but Open, and what it left in its arguments: on a default
// handle, a closed file or a copy that lost its file, 0 (or NULL) each.
std::vector<int64_t> Results(OrvHandle& h) {
  char byte = 'x';
  uint64_t t[3] = {5, 6, 7};
  std::vector<int64_t> r = {h.AddReserve(100), h.SetFileLength(1000), h.Close()};
  r.insert(r.end(), {h.Read(&byte, 1, 0), h.Write(&byte, 1, -1), h.Load(0, 1, 0) != nullptr});
  r.insert(r.end(), {h.UnLoad(&byte, 1), h.SeekBegin(), h.SeekEnd(), h.Seek(9)});
  r.insert(r.end(), {int64_t(h.SeekPos(ORV_SEEK_BEGIN, 3)), int64_t(h.GetSize()), h.IsOpen()});
  r.insert(r.end(), {h.IsLoading(), h.IsEnd(), h.SetFileTime(1, 2, 3, 0)});
  r.insert(r.end(), {h.GetFileTime(t[0], t[1], t[2], 0), byte, int64_t(t[0] + t[1] + t[2])});
  return r;
}
const std::vector<int64_t> kNothing = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 'x', 18};

std::string ReadAt(OrvHandle& f, uint32_t size, int64_t offset) {
  std::string text(size, '?');
  text.resize(f.Read(text.data(), size, offset));
  return text;
}

TEST(OrvFile, WorksOnARealFile) {
  TempFile tmp("");
  OrvFile f;
  ASSERT_EQ(f.Open(tmp.path.c_str(), ORV_FILE_READ | ORV_FILE_WRITE), 1);
  EXPECT_EQ((std::vector<int64_t>{f.Write(const_cast<char*>("hello world"), 11, -1),
                                  f.Write(const_cast<char*>("HELLO"), 5, 0), f.GetPos(),
                                  int64_t(f.GetSize()), f.Seek(6)}),
            (std::vector<int64_t>{11, 5, 5, 11, 6}));
  EXPECT_EQ((std::vector<std::string>{ReadAt(f, 3, -1), ReadAt(f, 3, -1), ReadAt(f, 100, 0),
                                      ReadAt(f, 5, -1), ReadAt(f, 1, -5)}),
            (std::vector<std::string>{"wor", "ld", "HELLO world", "", ""}));
  EXPECT_EQ((std::vector<int>{f.SeekBegin(), f.IsEnd(), f.SeekEnd(), f.IsEnd()}),
            (std::vector<int>{1, 0, 1, 1}));

  char* view = static_cast<char*>(f.Load(6, 5, 0));
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(std::string(view, 5) + std::to_string(f.IsLoading()), "world1");
  // A length that would cut the view is refused; UnLoad drops the whole view.
  EXPECT_EQ((std::vector<int>{
                f.SetFileLength(8), f.Load(6, 6, 0) || f.Load(-1, 2, 0) || f.Load(1, 0, 0),
                f.UnLoad(view + 1, 4), f.UnLoad(view, 1), f.IsLoading(), f.UnLoad(view, 5),
                f.SetFileLength(3), f.SetFileLength(5), f.AddReserve(1 << 20), f.AddReserve(0)}),
            (std::vector<int>{0, 0, 0, 1, 0, 0, 1, 1, 1, 1}));
  EXPECT_EQ(ReadAt(f, 100, 0), std::string("HEL\0\0", 5));

  const uint64_t accessed = 5, written = 2000000000000000000u;  // nanoseconds
  EXPECT_EQ(f.SetFileTime(0, accessed, written, 0) + f.SetFileTime(0, 0, 0, 0), 2);
  uint64_t c = 0, a = 0, w = 0;
  EXPECT_EQ((std::vector<uint64_t>{uint64_t(f.GetFileTime(c, a, w, 0)), a, w, c > 0}),
            (std::vector<uint64_t>{1, accessed, written, 1}));
  EXPECT_EQ(f.Close() * 10 + f.GetPos(), 15);  // closing keeps the position
  EXPECT_EQ(Results(f), kNothing);
}

// Only regular files open. Seek is SeekPos from the beginning, and a position
// below 0 leaves the position. The extension is the text behind the last dot
// of the last part of the name.
TEST(OrvFile, OpenSeekAndExtension) {
  TempFile tmp("hello world");
  const std::string made = tmp.path + ".made";
  OrvFile f;
  for (const char* path : {"/tmp", "/dev/null", made.c_str(), static_cast<const char*>(nullptr)})
    EXPECT_EQ(f.Open(path, ORV_FILE_READ) + f.IsOpen(), 0) << (path ? path : "NULL");
  EXPECT_EQ((std::vector<int>{f.Open(made.c_str(), ORV_FILE_CREATE), f.IsOpen()}),
            (std::vector<int>{1, 1}));
  std::remove(made.c_str());
  ASSERT_EQ(f.Open(tmp.path.c_str(), ORV_FILE_READ), 1);
  EXPECT_EQ(f.Write(const_cast<char*>("x"), 1, 0), 0u);  // opened for reading only
  for (const auto& c : ReadCases(ORV_CASES_DIR "/sys/seeks.tsv", 8, true)) {
    f.Seek(3);
    const uint64_t got = f.SeekPos(ORV_SEEK_TYPE(std::stoi(c[0])), std::stoll(c[1]));
    EXPECT_EQ(std::to_string(got) + " " + std::to_string(f.GetPos()), c[2]) << c[0] << " " << c[1];
  }
  ASSERT_EQ(f.Open(tmp.path.c_str(), ORV_FILE_WRITE | ORV_FILE_TRUNCATE), 1);
  EXPECT_EQ(f.GetSize(), 0u);
  for (const auto& c : ReadCases(ORV_CASES_DIR "/sys/extensions.tsv", 8, true)) {
    f.GetHandleName() = c[0].c_str();  // over the longer names before it
    OrvString ext("old", -1);
    f.GetHandleExt(ext);
    EXPECT_EQ(std::string(ext.buf, ext.len), c[1]) << c[0];
  }
}

// Copies are member-wise and each keeps the table of its own class. A file's
// copy shares the descriptor; once one of them releases it, the other leaves
// alone whatever file the number goes to next.
TEST(OrvSys, Copies) {
  TempFile first("first"), second("second"), third("third");
  OrvHandle fresh, handleCopy;
  EXPECT_EQ(Results(fresh), kNothing);
  EXPECT_EQ(fresh.Open("/dev/null", ORV_FILE_READ) + fresh.GetHandleName().len, 0);
  auto file = std::make_unique<TestFile>();
  ASSERT_EQ(file->Open(first.path.c_str(), ORV_FILE_READ), 1);
  file->Seek(3);
  handleCopy = *file;
  OrvHandle constructed(*file);
  for (OrvHandle* h : {&handleCopy, &constructed}) {
    OrvString ext("kept", -1);
    h->GetHandleExt(ext);
    EXPECT_EQ(Results(*h), kNothing);  // the defaults, not the file's operations
    EXPECT_EQ(std::to_string(h->GetPos()) + ext.buf + h->GetHandleName().buf, "3kept" + first.path);
    h->GetHandleName() = "changed";
  }
  EXPECT_EQ(file->GetHandleName().buf, first.path);

  const int number = file->Descriptor();
  EXPECT_EQ(ReadAt(*std::make_unique<OrvFile>(*file), 5, 0), "first");
  TestFile other, target;
  ASSERT_EQ(other.Open(second.path.c_str(), ORV_FILE_READ), 1);
  ASSERT_EQ(other.Descriptor(), number);
  EXPECT_EQ(Results(*file), kNothing);
  file.reset();
  EXPECT_EQ(ReadAt(other, 6, 0), "second");
  ASSERT_EQ(target.Open(third.path.c_str(), ORV_FILE_READ), 1);
  const int targetNumber = target.Descriptor();
  target = other;
  EXPECT_EQ(fcntl(targetNumber, F_GETFD), -1);  // closed, not lost
  EXPECT_EQ(ReadAt(target, 6, 0), "second");

  char cwd[4096];
  ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
  OrvDirectory dir, dirCopy(dir);
  dirCopy.GetWorkDir() = "elsewhere";
  EXPECT_STREQ(dir.GetWorkDir().buf, cwd);
  dir = dirCopy;
  OrvFileFind find, assigned;
  find.firstWord = 1, find.firstText = "a", find.secondText = "b", find.lastWord = 4;
  OrvFileFind copy(find);
  copy.secondText = "c";
  assigned = copy;
  EXPECT_EQ(std::string(dir.GetWorkDir().buf) + find.secondText.buf + assigned.firstText.buf +
                assigned.secondText.buf +
                std::to_string(assigned.firstWord * 10 + assigned.lastWord),
            "elsewherebac14");
}

}  // namespace
