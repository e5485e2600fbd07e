#include <fcntl.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "orvwebpage/OrvSys.h"
#include "support/RunTool.h"
#include "sys/SysTestClasses.h"

namespace {

std::string ReadAt(OrvFile& f, uint32_t size, int64_t offset) {
  std::string text(size, '?');
  text.resize(f.Read(text.data(), size, offset));
  return text;
}

TEST(OrvFile, WorksOnARealFile) {
  TempFile tmp("");
  OrvFile f;
  ASSERT_EQ(f.Open(tmp.path.c_str(), ORV_FILE_READ | ORV_FILE_WRITE), 1);
  EXPECT_EQ(f.GetHandleName().buf, tmp.path);
  EXPECT_EQ(f.Write(const_cast<char*>("hello world"), 11, -1), 11u);
  EXPECT_EQ(f.Write(const_cast<char*>("HELLO"), 5, 0) + f.GetPos() + f.GetSize(), 21u);
  EXPECT_EQ(ReadAt(f, 100, 0), "HELLO world");
  EXPECT_EQ(ReadAt(f, 5, -1) + ReadAt(f, 1, -5), "");
  EXPECT_EQ(f.GetPos(), 11);
  EXPECT_EQ(f.Seek(6), 6);
  EXPECT_EQ(ReadAt(f, 3, -1), "wor");
  EXPECT_EQ(ReadAt(f, 3, -1), "ld");
  EXPECT_EQ(f.SeekBegin() + f.IsEnd(), 1);
  EXPECT_EQ(f.SeekEnd() + f.IsEnd(), 2);

  const char* view = static_cast<const char*>(f.Load(6, 5, 0));
  ASSERT_NE(view, nullptr);
  EXPECT_EQ(std::string(view, 5), "world");
  EXPECT_EQ(f.IsLoading(), 1);
  EXPECT_EQ(f.SetFileLength(8), 0);  // would cut the view
  EXPECT_EQ(f.Load(6, 6, 0) || f.Load(-1, 2, 0) || f.Load(0, 0, 0), false);
  EXPECT_EQ(f.UnLoad(const_cast<char*>(view) + 1, 4), 0);
  EXPECT_EQ(f.UnLoad(const_cast<char*>(view), 1), 1);  // the whole view, whatever the size
  EXPECT_EQ(f.IsLoading() + f.UnLoad(const_cast<char*>(view), 5), 0);

  EXPECT_EQ(f.SetFileLength(3), 1);
  EXPECT_EQ(f.SetFileLength(5), 1);
  EXPECT_EQ(ReadAt(f, 100, 0), std::string("HEL\0\0", 5));
  EXPECT_EQ(f.AddReserve(1 << 20), 1);
  EXPECT_EQ(f.GetSize(), 5u);

  const uint64_t accessed = 1000000000000000005u, written = 2000000000000000000u;
  EXPECT_EQ(f.SetFileTime(0, accessed, written, 0) + f.SetFileTime(0, 0, 0, 0), 2);
  uint64_t c = 0, a = 0, w = 0;
  EXPECT_EQ(f.GetFileTime(c, a, w, 0), 1);
  EXPECT_EQ(a, accessed);
  EXPECT_EQ(w, written);
  EXPECT_GT(c, 0u);

  EXPECT_EQ(f.Close(), 1);
  for (const ZeroCall& call : kZeroCalls) EXPECT_EQ(call.call(f), 0) << call.name;
  EXPECT_EQ(f.GetPos(), 5);
}

TEST(OrvFile, OpensRegularFilesOnly) {
  TempFile tmp("text");
  const std::string made = tmp.path + ".made";
  struct Row {
    const char* path;
    uint32_t mode;
    int want;
  } rows[] = {{nullptr, 0, 0},      {"/tmp", 0, 0},           {"/dev/null", 0, 0},
              {made.c_str(), 0, 0}, {tmp.path.c_str(), 0, 1}, {made.c_str(), ORV_FILE_CREATE, 1}};
  for (const Row& r : rows) {
    OrvFile f;
    EXPECT_EQ(f.Open(r.path, r.mode) + f.IsOpen(), 2 * r.want) << (r.path ? r.path : "NULL");
  }
  OrvFile f;
  ASSERT_EQ(f.Open(tmp.path.c_str(), ORV_FILE_READ), 1);
  EXPECT_EQ(f.Write(const_cast<char*>("x"), 1, 0), 0u);
  EXPECT_EQ(f.Open(tmp.path.c_str(), ORV_FILE_WRITE | ORV_FILE_TRUNCATE), 1);
  EXPECT_EQ(f.GetSize(), 0u);
  std::remove(made.c_str());
}

TEST(OrvFile, LoadMapsAnyRangeInsideTheFile) {
  std::string text;
  for (int i = 0; i < 9000; i++) text += char('a' + i % 26);
  TempFile tmp(text);
  OrvFile f;
  ASSERT_EQ(f.Open(tmp.path.c_str(), ORV_FILE_READ), 1);
  for (int64_t offset : {0, 1, 4095, 4096, 4097, 8990}) {
    const char* view = static_cast<const char*>(f.Load(offset, 10, 1));
    ASSERT_NE(view, nullptr) << offset;
    EXPECT_EQ(std::string(view, 10), text.substr(size_t(offset), 10)) << offset;
  }
}

TEST(OrvFile, SeekIsSeekPosFromTheBeginning) {
  TempFile tmp("hello world");
  OrvFile f;
  ASSERT_EQ(f.Open(tmp.path.c_str(), ORV_FILE_READ), 1);
  struct Row {
    ORV_SEEK_TYPE type;
    int64_t offset;
    uint64_t want;  // the result; the position stays 3 when it is 0
  } rows[] = {
      {ORV_SEEK_BEGIN, 5, 5},   {ORV_SEEK_BEGIN, 20, 20},  {ORV_SEEK_BEGIN, -1, 0},
      {ORV_SEEK_CURRENT, 4, 7}, {ORV_SEEK_CURRENT, -4, 0}, {ORV_SEEK_CURRENT, INT64_MAX, 0},
      {ORV_SEEK_END, -1, 10},   {ORV_SEEK_END, 0, 11},     {ORV_SEEK_TYPE(9), 1, 0},
  };
  for (const Row& r : rows) {
    const bool begin = r.type == ORV_SEEK_BEGIN;
    for (int viaSeek = 0; viaSeek <= begin; viaSeek++) {
      f.Seek(3);
      const uint64_t got = viaSeek ? uint64_t(f.Seek(r.offset)) : f.SeekPos(r.type, r.offset);
      EXPECT_EQ(got, r.want) << r.type << " " << r.offset << " " << viaSeek;
      EXPECT_EQ(uint64_t(f.GetPos()), r.want ? r.want : 3) << r.type << " " << r.offset;
    }
  }
}

TEST(OrvFile, ExtensionIsTheLastPartBehindItsLastDot) {
  const char* rows[][2] = {
      {"a/b.txt", "txt"}, {"x.tar.gz", "gz"}, {".bashrc", ""}, {"/p/.hidden", ""},
      {"dir.d/file", ""}, {"noext", ""},      {"trail.", ""},  {"a/b..c", "c"},
      {"abc.x", "x"},     {"ab", ""},  // the old name's bytes linger behind the new one
  };
  OrvFile f;
  for (const auto& r : rows) {
    f.GetHandleName() = r[0];
    OrvString ext("old", -1);
    f.GetHandleExt(ext);
    EXPECT_STREQ(ext.buf, r[1]) << r[0];
  }
}

// A copy shares the descriptor; once one of them releases it, the other
// must leave alone whatever file the number goes to next.
TEST(OrvFile, CopiesShareTheDescriptorUntilOneReleasesIt) {
  TempFile first("first"), second("second"), third("third");
  auto original = std::make_unique<TestFile>();
  ASSERT_EQ(original->Open(first.path.c_str(), ORV_FILE_READ), 1);
  const int number = original->Descriptor();
  EXPECT_EQ(ReadAt(*std::make_unique<OrvFile>(*original), 5, 0), "first");
  EXPECT_EQ(original->IsOpen(), 0);
  TestFile other, target;
  ASSERT_EQ(other.Open(second.path.c_str(), ORV_FILE_READ), 1);
  ASSERT_EQ(other.Descriptor(), number);
  EXPECT_EQ(ReadAt(*original, 5, 0), "");
  original.reset();
  EXPECT_EQ(ReadAt(other, 6, 0), "second");

  ASSERT_EQ(target.Open(third.path.c_str(), ORV_FILE_READ), 1);
  const int targetNumber = target.Descriptor();
  target = other;
  EXPECT_EQ(fcntl(targetNumber, F_GETFD), -1);  // closed, not lost
  EXPECT_EQ(ReadAt(target, 6, 0), "second");
}

}  // namespace
