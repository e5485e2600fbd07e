#include <algorithm>
#include <iterator>

#include "orvwebpage/OrvSys.h"

OrvThreadPool::OrvThreadPool() : poolWords{} {}

OrvThreadPool::OrvThreadPool(const OrvThreadPool& other) {
  std::copy(std::begin(other.poolWords), std::end(other.poolWords), poolWords);
}

OrvThreadPool& OrvThreadPool::operator=(const OrvThreadPool& other) {
  if (this == &other) return *this;  // std::copy onto its own source is undefined
  std::copy(std::begin(other.poolWords), std::end(other.poolWords), poolWords);
  return *this;
}

OrvThreadPool::~OrvThreadPool() {}

OrvParallelClient::OrvParallelClient() : parallelWords{} {}

OrvParallelClient::OrvParallelClient(const OrvParallelClient& other) : OrvThreadPool(other) {
  std::copy(std::begin(other.parallelWords), std::end(other.parallelWords), parallelWords);
}

OrvParallelClient& OrvParallelClient::operator=(const OrvParallelClient& other) {
  if (this == &other) return *this;  // std::copy onto its own source is undefined
  OrvThreadPool::operator=(other);
  std::copy(std::begin(other.parallelWords), std::end(other.parallelWords), parallelWords);
  return *this;
}

OrvParallelClient::~OrvParallelClient() {}

OrvServer::OrvServer() : serverWords{} {}

OrvServer::OrvServer(const OrvServer& other) : OrvThreadPool(other), serverText(other.serverText) {
  std::copy(std::begin(other.serverWords), std::end(other.serverWords), serverWords);
}

OrvServer& OrvServer::operator=(const OrvServer& other) {
  if (this == &other) return *this;  // std::copy onto its own source is undefined
  OrvThreadPool::operator=(other);
  std::copy(std::begin(other.serverWords), std::end(other.serverWords), serverWords);
  serverText = other.serverText;
  return *this;
}

OrvServer::~OrvServer() {}

void OrvServer::ReStart() {}
