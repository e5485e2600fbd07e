#include <algorithm>
#include <iterator>

#include "orvwebpage/OrvSys.h"

OrvClient::OrvClient() : clientWords{} {}

OrvClient::OrvClient(const OrvClient& other) : OrvHandle(other) {
  std::copy(std::begin(other.clientWords), std::end(other.clientWords), clientWords);
}

OrvClient& OrvClient::operator=(const OrvClient& other) {
  if (this == &other) return *this;  // std::copy onto its own source is undefined
  OrvHandle::operator=(other);
  std::copy(std::begin(other.clientWords), std::end(other.clientWords), clientWords);
  return *this;
}

OrvClient::~OrvClient() {}
