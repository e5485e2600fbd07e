#include "orvwebpage/OrvSys.h"

OrvClient::OrvClient() : clientWords{} {}

OrvClient::OrvClient(const OrvClient& other) : OrvHandle(other) {
  for (int i = 0; i < 6; i++) clientWords[i] = other.clientWords[i];
}

OrvClient& OrvClient::operator=(const OrvClient& other) {
  OrvHandle::operator=(other);
  for (int i = 0; i < 6; i++) clientWords[i] = other.clientWords[i];
  return *this;
}

OrvClient::~OrvClient() {}
