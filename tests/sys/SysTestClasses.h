#pragma once

#include <cstdint>

#include "orvwebpage/OrvSys.h"

// Small members of the family with the application's parts filled in, each
// answer telling which class's table served the call.

class TestHandle : public OrvHandle {
 public:
  void Place(int64_t at) { pos = at; }
};

class TestClient : public OrvClient {
 public:
  void Place(int64_t at) { pos = at; }
  void GetHandleExt(OrvString& ext) override { ext = "client"; }
  int AddReserve(uint32_t) override { return 0; }
  int SetFileLength(uint64_t) override { return 0; }
  int Close() override { return 0; }
  uint32_t Read(void*, uint32_t, int64_t) override { return 0; }
  uint32_t Write(void*, uint32_t, int64_t) override { return 0; }
  void* Load(int64_t, int64_t, int) override { return nullptr; }
  int UnLoad(void*, uint32_t) override { return 0; }
  int SeekBegin() override { return 0; }
  int SeekEnd() override { return 0; }
  uint64_t SeekPos(ORV_SEEK_TYPE, int64_t) override { return 0; }
  int64_t Seek(int64_t) override { return 0; }
  uint64_t GetSize() override { return 0; }
  int IsOpen() override { return 7; }
  int IsLoading() override { return 0; }
  int IsEnd() override { return 0; }
  using OrvClient::Open;
  int Open(char*, uint32_t) override { return 8; }
  int RecvDeal(char*, int) override { return 0; }
  int CmdDeal(char*, int, int, int) override { return 0; }
};

class TestServer : public OrvServer {
 public:
  void Set(uint32_t state, uint32_t port, const char* text) {
    poolWords[2] = state;
    serverWords[21] = port;
    serverText = text;
  }
  OrvString& Text() { return serverText; }
  void* AddTask(void*) override { return nullptr; }
  int RunTask(void*) override { return 0; }
  int RemoveTask(void*) override { return 0; }
  void* FetchTask() override { return nullptr; }
  int32_t GetTaskTotal() override { return 3; }
  int32_t GetTaskRemain() override { return 0; }
  void Clears() override {}
  int CheckEnd() override { return 0; }
  int ParallelBeforeRecv(ORVPARALLCLIENT&) override { return 0; }
  void ParallelBeforeEnd(ORVPARALLCLIENT&) override {}
  int CheckToken(ORVSOCKCMD&) override { return 0; }
  int ParallelCmd(OrvStream&, int, int, ORVPARALLCLIENT&) override { return 0; }
  int ParallEndUp(ORVPARALLCLIENT*, OrvString&, int) override { return 0; }
  void ParallelReleaseBuffer(void*) override {}
  int ParallelAynPush(ORVPARALLCLIENT*) override { return 0; }
  int ParallelAynDelete(ORVPARALLCLIENT*) override { return 0; }
  int ParallelAynFreeAll() override { return 0; }
  int BeforeRecv(ORVSOCKCLIENT&) override { return 0; }
  void BeforeEnd(ORVSOCKCLIENT&) override {}
  int DealCmd(OrvStream&, ORVSOCKCMD*, ORVSOCKCLIENT&) override { return 0; }
  int DealData(char*, int, ORVSOCKCLIENT*) override { return 0; }
  void ReleaseClientBuffer(void*) override {}
};

class TestFile : public OrvFile {
 public:
  int Descriptor() const { return fd; }
};

// Every operation but Open as a number: on a default handle or a closed file
// each gives 0 (or NULL) and leaves its arguments alone.
struct ZeroCall {
  int64_t (*call)(OrvHandle&);
  const char* name;
};
inline char zeroByte = 'x';
inline uint64_t zeroTimes[3] = {5, 6, 7};
#define ORV_ZERO_CALL(expr)                           \
  {                                                   \
    [](OrvHandle& h) { return int64_t(expr); }, #expr \
  }
inline const ZeroCall kZeroCalls[] = {
    ORV_ZERO_CALL(h.AddReserve(100)),
    ORV_ZERO_CALL(h.SetFileLength(1000)),
    ORV_ZERO_CALL(h.Close()),
    ORV_ZERO_CALL(h.Read(&zeroByte, 1, 0)),
    ORV_ZERO_CALL(h.Write(&zeroByte, 1, -1)),
    ORV_ZERO_CALL(h.Load(0, 1, 0) != nullptr),
    ORV_ZERO_CALL(h.UnLoad(&zeroByte, 1)),
    ORV_ZERO_CALL(h.SeekBegin()),
    ORV_ZERO_CALL(h.SeekEnd()),
    ORV_ZERO_CALL(h.SeekPos(ORV_SEEK_BEGIN, 3)),
    ORV_ZERO_CALL(h.Seek(9)),
    ORV_ZERO_CALL(h.GetSize()),
    ORV_ZERO_CALL(h.IsOpen()),
    ORV_ZERO_CALL(h.IsLoading()),
    ORV_ZERO_CALL(h.IsEnd()),
    ORV_ZERO_CALL(h.SetFileTime(1, 2, 3, 0)),
    ORV_ZERO_CALL(h.GetFileTime(zeroTimes[0], zeroTimes[1], zeroTimes[2], 0)),
};
