#pragma once

#include <cstdint>

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvString.h"

// The system class family. The library supplies the shared defaults, the
// tables of virtual operations and the member-wise copies; OrvFile and
// OrvDirectory work for real on POSIX. The socket and thread classes
// (OrvClient, OrvThreadPool, OrvServer, OrvParallelClient, OrvParallVar) leave
// their own operations pure virtual: an application derives and supplies them.
//
// Copies are member-wise and know nothing of what the words mean: a copy of an
// open OrvFile shares its descriptor (see OrvFile for what that allows).

// Records of the network side; only an application that derives knows them.
struct ORVSOCKCLIENT;
struct ORVPARALLCLIENT;
struct ORVSOCKCMD;
class OrvStream;

// 0 is the type that OrvFile::Seek passes. Any other int is a legal value too
// (and a failed seek), hence the fixed width.
enum ORV_SEEK_TYPE : int32_t { ORV_SEEK_BEGIN = 0, ORV_SEEK_CURRENT = 1, ORV_SEEK_END = 2 };

// Mode bits of OrvFile::Open. Neither READ nor WRITE opens for reading.
enum ORV_FILE_MODE {
  ORV_FILE_READ = 0x1,
  ORV_FILE_WRITE = 0x2,
  ORV_FILE_CREATE = 0x4,    // make the file when it is missing (mode 0644 before umask)
  ORV_FILE_TRUNCATE = 0x8,  // empty it on opening; needs WRITE
};

// Everything that can be opened and read. Each default gives its result
// (0 or NULL) whatever the arguments; GetPos gives the position.
class ORV_API OrvHandle {
 public:
  OrvHandle();
  OrvHandle(const OrvHandle& other);
  OrvHandle& operator=(const OrvHandle& other);
  virtual ~OrvHandle();

  virtual void GetHandleExt(OrvString& ext);
  virtual int AddReserve(uint32_t bytes);
  virtual int SetFileLength(uint64_t length);
  virtual int Open(const char* path, uint32_t mode);
  virtual int Close();
  virtual uint32_t Read(void* buffer, uint32_t size, int64_t offset);
  virtual uint32_t Write(void* buffer, uint32_t size, int64_t offset);
  virtual void* Load(int64_t offset, int64_t length, int flags);
  virtual int UnLoad(void* view, uint32_t size);
  virtual int SeekBegin();
  virtual int SeekEnd();
  virtual uint64_t SeekPos(ORV_SEEK_TYPE type, int64_t offset);
  virtual int64_t Seek(int64_t pos);
  virtual int64_t GetPos();
  virtual uint64_t GetSize();
  virtual int IsOpen();
  virtual int IsLoading();
  virtual int IsEnd();
  virtual int SetFileTime(uint64_t created, uint64_t accessed, uint64_t written, int flags);
  virtual int GetFileTime(uint64_t& created, uint64_t& accessed, uint64_t& written, int flags);

  OrvString& GetHandleName() { return name; }

 protected:
  uint32_t handleWord;  // the platform's; copied as it is
  int64_t pos;
  OrvString name;
};

// A file on a POSIX descriptor. Results: 1 or the count or pointer asked for,
// and 0 or NULL on any failure, with errno as the system left it.
//
// Read and Write work at offset, or at the position for offset -1; either way
// the position ends behind the bytes done. Load maps [offset, offset+length)
// read-only (the range must lie inside the file and below 4 GiB long; the int is
// not used); UnLoad takes back a view this object's Load gave, whatever size
// says, and the destructor takes back any left. While views are out, the file
// cannot be cut below them. Times are nanoseconds since 1970; "created" reads
// as the status-change time and cannot be set; a 0 leaves that time alone; the
// int is not used.
//
// A copy shares the descriptor. Close or destruction of one releases it for
// both; the other then finds it is no longer its file and leaves it alone.
// Assignment first closes the descriptor the target had, unless it is the same.
class ORV_API OrvFile : public OrvHandle {
 public:
  OrvFile();
  OrvFile(const OrvFile& other);
  OrvFile& operator=(const OrvFile& other);
  ~OrvFile() override;

  // The text behind the last dot of the last path part, without the dot;
  // empty for none and for a name that only begins with a dot.
  void GetHandleExt(OrvString& ext) override;
  // Allocates bytes behind the end on disk, leaving the size as it is.
  int AddReserve(uint32_t bytes) override;
  int SetFileLength(uint64_t length) override;
  // Closes what was open, then opens path; the name becomes path, the position 0.
  int Open(const char* path, uint32_t mode) override;
  int Close() override;
  uint32_t Read(void* buffer, uint32_t size, int64_t offset) override;
  uint32_t Write(void* buffer, uint32_t size, int64_t offset) override;
  void* Load(int64_t offset, int64_t length, int flags) override;
  int UnLoad(void* view, uint32_t size) override;
  int SeekBegin() override;
  int SeekEnd() override;
  // Gives the new position; a negative result or a closed file gives 0 and
  // leaves the position. Beyond the end is allowed; a write there fills zeros.
  uint64_t SeekPos(ORV_SEEK_TYPE type, int64_t offset) override;
  int64_t Seek(int64_t pos) override;
  uint64_t GetSize() override;
  int IsOpen() override;
  int IsLoading() override;
  int IsEnd() override;
  int SetFileTime(uint64_t created, uint64_t accessed, uint64_t written, int flags) override;
  int GetFileTime(uint64_t& created, uint64_t& accessed, uint64_t& written, int flags) override;

 protected:
  int32_t fd;          // word 1: the descriptor, -1 when closed
  uint32_t openMode;   // word 2: the ORV_FILE_MODE bits of Open
  uint32_t inodeLow;   // word 3: low half of the file's inode number,
  uint32_t deviceLow;  // word 4: and of its device: fd must still name them
};

// A network connection. All of its own operations are the application's;
// Open(const char*, ...), GetPos and the file times keep the defaults.
class ORV_API OrvClient : public OrvHandle {
 public:
  OrvClient();
  OrvClient(const OrvClient& other);
  OrvClient& operator=(const OrvClient& other);
  ~OrvClient() override;

  void GetHandleExt(OrvString& ext) override = 0;
  int AddReserve(uint32_t bytes) override = 0;
  int SetFileLength(uint64_t length) override = 0;
  int Close() override = 0;
  uint32_t Read(void* buffer, uint32_t size, int64_t offset) override = 0;
  uint32_t Write(void* buffer, uint32_t size, int64_t offset) override = 0;
  void* Load(int64_t offset, int64_t length, int flags) override = 0;
  int UnLoad(void* view, uint32_t size) override = 0;
  int SeekBegin() override = 0;
  int SeekEnd() override = 0;
  uint64_t SeekPos(ORV_SEEK_TYPE type, int64_t offset) override = 0;
  int64_t Seek(int64_t pos) override = 0;
  uint64_t GetSize() override = 0;
  int IsOpen() override = 0;
  int IsLoading() override = 0;
  int IsEnd() override = 0;

  using OrvHandle::Open;
  virtual int Open(char* address, uint32_t mode) = 0;
  virtual int RecvDeal(char* data, int length) = 0;
  virtual int CmdDeal(char* data, int length, int command, int flags) = 0;

 protected:
  uint32_t clientWords[6];
};

// A pool of tasks. Its operations are the application's.
class ORV_API OrvThreadPool {
 public:
  OrvThreadPool();
  OrvThreadPool(const OrvThreadPool& other);
  OrvThreadPool& operator=(const OrvThreadPool& other);

  virtual void* AddTask(void* task) = 0;
  virtual int RunTask(void* task) = 0;
  virtual int RemoveTask(void* task) = 0;
  virtual void* FetchTask() = 0;
  virtual int32_t GetTaskTotal() = 0;
  virtual int32_t GetTaskRemain() = 0;
  virtual void Clears() = 0;
  virtual ~OrvThreadPool();
  virtual int CheckEnd() = 0;

  int GetState() { return int(poolWords[2]); }

 protected:
  uint32_t poolWords[4];  // the third is the state
};

// A client that works several connections at once; the application's too.
class ORV_API OrvParallelClient : public OrvThreadPool {
 public:
  OrvParallelClient();
  OrvParallelClient(const OrvParallelClient& other);
  OrvParallelClient& operator=(const OrvParallelClient& other);
  ~OrvParallelClient() override;

  virtual int DealData(char* data, int length, ORVSOCKCLIENT* client) = 0;
  virtual void ReleaseClientBuffer(void* buffer) = 0;

 protected:
  uint32_t parallelWords[3];
};

// A listening server. Everything but ReStart (which does nothing here) is the
// application's.
class ORV_API OrvServer : public OrvThreadPool {
 public:
  OrvServer();
  OrvServer(const OrvServer& other);
  OrvServer& operator=(const OrvServer& other);
  ~OrvServer() override;

  virtual int ParallelBeforeRecv(ORVPARALLCLIENT& client) = 0;
  virtual void ParallelBeforeEnd(ORVPARALLCLIENT& client) = 0;
  virtual int CheckToken(ORVSOCKCMD& command) = 0;
  virtual int ParallelCmd(OrvStream& stream, int command, int flags, ORVPARALLCLIENT& client) = 0;
  virtual int ParallEndUp(ORVPARALLCLIENT* client, OrvString& text, int flags) = 0;
  virtual void ParallelReleaseBuffer(void* buffer) = 0;
  virtual int ParallelAynPush(ORVPARALLCLIENT* client) = 0;
  virtual int ParallelAynDelete(ORVPARALLCLIENT* client) = 0;
  virtual int ParallelAynFreeAll() = 0;
  virtual int BeforeRecv(ORVSOCKCLIENT& client) = 0;
  virtual void BeforeEnd(ORVSOCKCLIENT& client) = 0;
  virtual void ReStart();
  virtual int DealCmd(OrvStream& stream, ORVSOCKCMD* command, ORVSOCKCLIENT& client) = 0;
  virtual int DealData(char* data, int length, ORVSOCKCLIENT* client) = 0;
  virtual void ReleaseClientBuffer(void* buffer) = 0;

  int GetListenPort() { return int(serverWords[21]); }

 protected:
  uint32_t serverWords[24];  // the 22nd is the listening port
  OrvString serverText;
};

// A variable shared between parallel workers. The family names none of its
// four operations; an application defines them.
class ORV_API OrvParallVar {
 public:
  OrvParallVar();
  OrvParallVar(const OrvParallVar& other);
  OrvParallVar& operator=(const OrvParallVar& other);  // copies nothing

  virtual int Operation1() = 0;
  virtual int Operation2() = 0;
  virtual int Operation3() = 0;
  virtual int Operation4() = 0;
  virtual ~OrvParallVar();
};

// The process's work directory at the time the object was made (empty if the
// system could not tell it).
class ORV_API OrvDirectory {
 public:
  OrvDirectory();
  OrvDirectory(const OrvDirectory& other);
  OrvDirectory& operator=(const OrvDirectory& other);

  OrvString& GetWorkDir() { return workDir; }

 private:
  OrvString workDir;
};

// The small classes below are the platform's; here they are words to copy.
class ORV_API OrvFileEx {
 public:
  OrvFileEx() = default;
  OrvFileEx(const OrvFileEx& other) = default;
  OrvFileEx& operator=(const OrvFileEx& other);

  uint32_t words[2] = {0, 0};
};

class ORV_API OrvFileFind {
 public:
  OrvFileFind() = default;
  OrvFileFind(const OrvFileFind& other);
  OrvFileFind& operator=(const OrvFileFind& other);

  uint32_t firstWord = 0;
  OrvString firstText;
  OrvString secondText;
  uint32_t lastWord = 0;
};

class ORV_API OrvLog {
 public:
  OrvLog() = default;
  OrvLog(const OrvLog& other) = default;
  OrvLog& operator=(const OrvLog& other);

  uint32_t word = 0;
};

class ORV_API OrvMsg {
 public:
  OrvMsg() = default;
  OrvMsg(const OrvMsg& other) = default;
  OrvMsg& operator=(const OrvMsg& other);

  uint32_t word = 0;
};

class ORV_API OrvSSLContext {
 public:
  OrvSSLContext() = default;
  OrvSSLContext(const OrvSSLContext& other) = default;
  OrvSSLContext& operator=(const OrvSSLContext& other);

  uint32_t word = 0;
};
