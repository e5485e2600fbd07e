#pragma once

#include <libxml/globals.h>
#include <libxml/xmlerror.h>

// Some of the parser's complaints (a page whose bytes do not fit its declared
// encoding) bypass the context and go to the thread's global error handlers,
// which print. For the length of a parse they go nowhere; the handlers the
// application had are put back afterwards.
class OrvQuietParser {
 public:
  OrvQuietParser()
      : generic(xmlGenericError),
        genericContext(xmlGenericErrorContext),
        structured(xmlStructuredError),
        structuredContext(xmlStructuredErrorContext) {
    xmlSetGenericErrorFunc(nullptr, Ignore);
    xmlSetStructuredErrorFunc(nullptr, IgnoreStructured);
  }
  OrvQuietParser(const OrvQuietParser&) = delete;
  OrvQuietParser& operator=(const OrvQuietParser&) = delete;
  ~OrvQuietParser() {
    xmlSetGenericErrorFunc(genericContext, generic);
    xmlSetStructuredErrorFunc(structuredContext, structured);
  }

 private:
  static void Ignore(void*, const char*, ...) {}
  static void IgnoreStructured(void*, xmlErrorPtr) {}

  xmlGenericErrorFunc generic;
  void* genericContext;
  xmlStructuredErrorFunc structured;
  void* structuredContext;
};
