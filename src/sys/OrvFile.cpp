#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "orvwebpage/OrvSys.h"
#include "sys/OrvFileViews.h"

namespace {

constexpr uint64_t kNanosPerSecond = 1000000000u;

uint64_t Nanos(const timespec& t) {
  if (t.tv_sec < 0) return 0;
  return uint64_t(t.tv_sec) * kNanosPerSecond + uint64_t(t.tv_nsec);
}

timespec TimeOrOmit(uint64_t nanos) {
  timespec t{};
  if (nanos == 0) {
    t.tv_nsec = UTIME_OMIT;
  } else {
    t.tv_sec = time_t(nanos / kNanosPerSecond);
    t.tv_nsec = long(nanos % kNanosPerSecond);
  }
  return t;
}

int OpenFlags(uint32_t mode) {
  int flags = O_CLOEXEC | O_NOCTTY | O_NONBLOCK;  // a FIFO must not block the open
  const bool reads = mode & ORV_FILE_READ, writes = mode & ORV_FILE_WRITE;
  flags |= writes ? (reads ? O_RDWR : O_WRONLY) : O_RDONLY;
  if (mode & ORV_FILE_CREATE) flags |= O_CREAT;
  if (writes && (mode & ORV_FILE_TRUNCATE)) flags |= O_TRUNC;
  return flags;
}

// Reads or writes at the offset (-1: the position) until size bytes are done,
// the call gives no more, or the offset would pass the largest file position;
// interrupted calls are made again. The position ends behind the bytes done.
template <class Call>
uint32_t TransferAt(int own, void* buffer, uint32_t size, int64_t offset, int64_t& pos, Call call) {
  const int64_t at = offset == -1 ? pos : offset;
  if (own < 0 || !buffer || at < 0) return 0;
  char* bytes = static_cast<char*>(buffer);
  uint32_t done = 0;
  while (done < size && uint64_t(at) + done <= uint64_t(INT64_MAX)) {
    const ssize_t moved = call(own, bytes + done, size - done, off_t(at + done));
    if (moved < 0 && errno == EINTR) continue;
    if (moved <= 0) break;
    done += uint32_t(moved);
  }
  pos = at + int64_t(done);
  return done;
}

}  // namespace

OrvFile::OrvFile() : fd(-1), openMode(0), inodeLow(0), deviceLow(0) {}

OrvFile::OrvFile(const OrvFile& other)
    : OrvHandle(other),
      fd(other.fd),
      openMode(other.openMode),
      inodeLow(other.inodeLow),
      deviceLow(other.deviceLow) {}

OrvFile& OrvFile::operator=(const OrvFile& other) {
  // The descriptor this object had would otherwise be lost.
  if (fd != other.fd) Close();
  OrvHandle::operator=(other);
  fd = other.fd;
  openMode = other.openMode;
  inodeLow = other.inodeLow;
  deviceLow = other.deviceLow;
  return *this;
}

OrvFile::~OrvFile() {
  OrvUnmapAllFileViews(this);
  OrvFile::Close();  // a derived class is gone by now: this class's own
}

// fd, if it still names the file this object opened: a copy may have closed
// it, and the number may have gone to another file since.
static int OwnDescriptor(int fd, uint32_t inodeLow, uint32_t deviceLow, struct stat* st) {
  if (fd < 0 || fstat(fd, st) != 0) return -1;
  if (uint32_t(st->st_ino) != inodeLow || uint32_t(st->st_dev) != deviceLow) return -1;
  return fd;
}

int OrvFile::Open(const char* path, uint32_t mode) {
  Close();
  if (!path) return 0;
  int opened;
  do opened = open(path, OpenFlags(mode), 0644);
  while (opened < 0 && errno == EINTR);
  if (opened < 0) return 0;
  struct stat st;
  if (fstat(opened, &st) != 0 || !S_ISREG(st.st_mode)) {
    close(opened);
    return 0;
  }
  fcntl(opened, F_SETFL, fcntl(opened, F_GETFL) & ~O_NONBLOCK);
  fd = opened;
  openMode = mode;
  inodeLow = uint32_t(st.st_ino);
  deviceLow = uint32_t(st.st_dev);
  pos = 0;
  name.CopyBuf(path, -1);
  return 1;
}

int OrvFile::Close() {
  struct stat st;
  const int own = OwnDescriptor(fd, inodeLow, deviceLow, &st);
  fd = -1;
  if (own < 0) return 0;
  close(own);  // even on EINTR the descriptor is gone on Linux
  return 1;
}

uint32_t OrvFile::Read(void* buffer, uint32_t size, int64_t offset) {
  struct stat st;
  return TransferAt(
      OwnDescriptor(fd, inodeLow, deviceLow, &st), buffer, size, offset, pos,
      [](int own, char* bytes, uint32_t n, off_t at) { return pread(own, bytes, n, at); });
}

uint32_t OrvFile::Write(void* buffer, uint32_t size, int64_t offset) {
  struct stat st;
  return TransferAt(
      OwnDescriptor(fd, inodeLow, deviceLow, &st), buffer, size, offset, pos,
      [](int own, char* bytes, uint32_t n, off_t at) { return pwrite(own, bytes, n, at); });
}

void* OrvFile::Load(int64_t offset, int64_t length, int) {
  struct stat st;
  const int own = OwnDescriptor(fd, inodeLow, deviceLow, &st);
  if (own < 0 || offset < 0 || length <= 0 || length > int64_t(UINT32_MAX)) return nullptr;
  // A view past the end would fault when read.
  if (offset > st.st_size || length > st.st_size - offset) return nullptr;
  return OrvMapFileView(this, own, offset, uint32_t(length));
}

int OrvFile::UnLoad(void* view, uint32_t) { return view ? OrvUnmapFileView(this, view) : 0; }

int OrvFile::IsLoading() { return OrvCountFileViews(this) > 0; }

int OrvFile::SeekBegin() {
  struct stat st;
  if (OwnDescriptor(fd, inodeLow, deviceLow, &st) < 0) return 0;
  pos = 0;
  return 1;
}

int OrvFile::SeekEnd() {
  struct stat st;
  if (OwnDescriptor(fd, inodeLow, deviceLow, &st) < 0) return 0;
  pos = st.st_size;
  return 1;
}

uint64_t OrvFile::SeekPos(ORV_SEEK_TYPE type, int64_t offset) {
  struct stat st;
  if (OwnDescriptor(fd, inodeLow, deviceLow, &st) < 0) return 0;
  int64_t from;
  switch (type) {
    case ORV_SEEK_BEGIN:
      from = 0;
      break;
    case ORV_SEEK_CURRENT:
      from = pos;
      break;
    case ORV_SEEK_END:
      from = st.st_size;
      break;
    default:
      return 0;
  }
  int64_t target;
  if (__builtin_add_overflow(from, offset, &target) || target < 0) return 0;
  pos = target;
  return uint64_t(target);
}

int64_t OrvFile::Seek(int64_t to) { return int64_t(SeekPos(ORV_SEEK_BEGIN, to)); }

uint64_t OrvFile::GetSize() {
  struct stat st;
  return OwnDescriptor(fd, inodeLow, deviceLow, &st) < 0 ? 0 : uint64_t(st.st_size);
}

int OrvFile::SetFileLength(uint64_t length) {
  struct stat st;
  const int own = OwnDescriptor(fd, inodeLow, deviceLow, &st);
  if (own < 0 || length > uint64_t(INT64_MAX) || length < OrvFileViewsEnd(this)) return 0;
  int result;
  do result = ftruncate(own, off_t(length));
  while (result != 0 && errno == EINTR);
  return result == 0;
}

int OrvFile::AddReserve(uint32_t bytes) {
  struct stat st;
  const int own = OwnDescriptor(fd, inodeLow, deviceLow, &st);
  if (own < 0) return 0;
  if (bytes == 0) return 1;
  return fallocate(own, FALLOC_FL_KEEP_SIZE, st.st_size, off_t(bytes)) == 0;
}

int OrvFile::IsOpen() {
  struct stat st;
  return OwnDescriptor(fd, inodeLow, deviceLow, &st) >= 0;
}

int OrvFile::IsEnd() {
  struct stat st;
  return OwnDescriptor(fd, inodeLow, deviceLow, &st) >= 0 && pos >= st.st_size;
}

int OrvFile::GetFileTime(uint64_t& created, uint64_t& accessed, uint64_t& written, int) {
  struct stat st;
  if (OwnDescriptor(fd, inodeLow, deviceLow, &st) < 0) return 0;
  created = Nanos(st.st_ctim);
  accessed = Nanos(st.st_atim);
  written = Nanos(st.st_mtim);
  return 1;
}

int OrvFile::SetFileTime(uint64_t, uint64_t accessed, uint64_t written, int) {
  struct stat st;
  const int own = OwnDescriptor(fd, inodeLow, deviceLow, &st);
  if (own < 0) return 0;
  const timespec times[2] = {TimeOrOmit(accessed), TimeOrOmit(written)};
  return futimens(own, times) == 0;
}

void OrvFile::GetHandleExt(OrvString& ext) {
  int32_t dot = -1;
  for (int32_t i = name.len - 1; i >= 0 && name.buf[i] != '/'; i--) {
    if (name.buf[i] == '.') {
      dot = i;
      break;
    }
  }
  // A dot that opens the last part names a hidden file, not an extension.
  if (dot > 0 && name.buf[dot - 1] != '/')
    ext.CopyBuf(name.buf + dot + 1, name.len - dot - 1);
  else
    ext.Clear();
}
