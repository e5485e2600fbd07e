#include "orvwebpage/OrvSys.h"

// The defaults give their result whatever they are handed.

OrvHandle::OrvHandle() : handleWord(0), pos(0) {}

OrvHandle::OrvHandle(const OrvHandle& other)
    : handleWord(other.handleWord), pos(other.pos), name(other.name) {}

OrvHandle& OrvHandle::operator=(const OrvHandle& other) {
  handleWord = other.handleWord;
  pos = other.pos;
  name = other.name;
  return *this;
}

OrvHandle::~OrvHandle() {}

void OrvHandle::GetHandleExt(OrvString&) {}
int OrvHandle::AddReserve(uint32_t) { return 0; }
int OrvHandle::SetFileLength(uint64_t) { return 0; }
int OrvHandle::Open(const char*, uint32_t) { return 0; }
int OrvHandle::Close() { return 0; }
uint32_t OrvHandle::Read(void*, uint32_t, int64_t) { return 0; }
uint32_t OrvHandle::Write(void*, uint32_t, int64_t) { return 0; }
void* OrvHandle::Load(int64_t, int64_t, int) { return nullptr; }
int OrvHandle::UnLoad(void*, uint32_t) { return 0; }
int OrvHandle::SeekBegin() { return 0; }
int OrvHandle::SeekEnd() { return 0; }
uint64_t OrvHandle::SeekPos(ORV_SEEK_TYPE, int64_t) { return 0; }
int64_t OrvHandle::Seek(int64_t) { return 0; }
int64_t OrvHandle::GetPos() { return pos; }
uint64_t OrvHandle::GetSize() { return 0; }
int OrvHandle::IsOpen() { return 0; }
int OrvHandle::IsLoading() { return 0; }
int OrvHandle::IsEnd() { return 0; }
int OrvHandle::SetFileTime(uint64_t, uint64_t, uint64_t, int) { return 0; }
int OrvHandle::GetFileTime(uint64_t&, uint64_t&, uint64_t&, int) { return 0; }
