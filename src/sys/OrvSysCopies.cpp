#include "orvwebpage/OrvSys.h"

OrvParallVar::OrvParallVar() {}
OrvParallVar::OrvParallVar(const OrvParallVar&) {}
OrvParallVar& OrvParallVar::operator=(const OrvParallVar&) { return *this; }
OrvParallVar::~OrvParallVar() {}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): two word copies, safe on itself
OrvFileEx& OrvFileEx::operator=(const OrvFileEx& other) {
  words[0] = other.words[0];
  words[1] = other.words[1];
  return *this;
}

OrvFileFind::OrvFileFind(const OrvFileFind& other)
    : firstWord(other.firstWord),
      firstText(other.firstText),
      secondText(other.secondText),
      lastWord(other.lastWord) {}

OrvFileFind& OrvFileFind::operator=(const OrvFileFind& other) {
  firstWord = other.firstWord;
  firstText = other.firstText;
  secondText = other.secondText;
  lastWord = other.lastWord;
  return *this;
}

OrvLog& OrvLog::operator=(const OrvLog& other) {
  word = other.word;
  return *this;
}

OrvMsg& OrvMsg::operator=(const OrvMsg& other) {
  word = other.word;
  return *this;
}

OrvSSLContext& OrvSSLContext::operator=(const OrvSSLContext& other) {
  word = other.word;
  return *this;
}
