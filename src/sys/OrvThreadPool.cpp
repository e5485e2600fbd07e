#include "orvwebpage/OrvSys.h"

OrvThreadPool::OrvThreadPool() : poolWords{} {}

OrvThreadPool::OrvThreadPool(const OrvThreadPool& other) {
  for (int i = 0; i < 4; i++) poolWords[i] = other.poolWords[i];
}

OrvThreadPool& OrvThreadPool::operator=(const OrvThreadPool& other) {
  for (int i = 0; i < 4; i++) poolWords[i] = other.poolWords[i];
  return *this;
}

OrvThreadPool::~OrvThreadPool() {}

OrvParallelClient::OrvParallelClient() : parallelWords{} {}

OrvParallelClient::OrvParallelClient(const OrvParallelClient& other) : OrvThreadPool(other) {
  for (int i = 0; i < 3; i++) parallelWords[i] = other.parallelWords[i];
}

OrvParallelClient& OrvParallelClient::operator=(const OrvParallelClient& other) {
  OrvThreadPool::operator=(other);
  for (int i = 0; i < 3; i++) parallelWords[i] = other.parallelWords[i];
  return *this;
}

OrvParallelClient::~OrvParallelClient() {}

OrvServer::OrvServer() : serverWords{} {}

OrvServer::OrvServer(const OrvServer& other) : OrvThreadPool(other), serverText(other.serverText) {
  for (int i = 0; i < 24; i++) serverWords[i] = other.serverWords[i];
}

OrvServer& OrvServer::operator=(const OrvServer& other) {
  OrvThreadPool::operator=(other);
  for (int i = 0; i < 24; i++) serverWords[i] = other.serverWords[i];
  serverText = other.serverText;
  return *this;
}

OrvServer::~OrvServer() {}

void OrvServer::ReStart() {}
