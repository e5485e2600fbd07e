#include "orvwebpage/OrvWebPageUrl.h"

#include <cstring>

#include "core/OrvGrowArray.h"
#include "core/OrvMemory.h"

OrvWebPageUrl::OrvWebPageUrl() : params(nullptr), paramCount(0), paramCapacity(0) {}

OrvWebPageUrl::OrvWebPageUrl(const OrvWebPageUrl& other) : OrvWebPageUrl() { *this = other; }

OrvWebPageUrl& OrvWebPageUrl::operator=(const OrvWebPageUrl& other) {
  if (this == &other) return *this;
  url = other.url;
  scheme = other.scheme;
  host = other.host;
  dirs = other.dirs;
  stem = other.stem;
  ext = other.ext;
  AssignParams(params, paramCount, paramCapacity, other.params, other.paramCount);
  return *this;
}

OrvWebPageUrl::~OrvWebPageUrl() { OrvDeleteArray(params); }

void OrvWebPageUrl::Rebuild() {
  long size = long(scheme.len) + host.len + stem.len + ext.len + 8;
  for (int32_t i = 0; i < dirs.count; i++) size += dirs.GetStringLen(i) + 1;
  for (int32_t i = 0; i < paramCount; i++)
    size += long(params[i].name.len) + params[i].value.len + 2;
  url.Clear();
  url.Reserve(size);
  if (scheme.len > 0) {
    url += scheme;
    url += ':';
  }
  if (host.len > 0) {
    url.Append("//", 2);
    url += host;
  }
  url += '/';
  for (int32_t i = 0; i < dirs.count; i++) {
    url.Append(dirs[i], dirs.GetStringLen(i));
    url += '/';
  }
  if (stem.len > 0) {
    url += stem;
    if (ext.len > 0) {
      url += '.';
      url += ext;
    }
  }
  for (int32_t i = 0; i < paramCount; i++) {
    url += i == 0 ? '?' : '&';
    url += params[i].name;
    url += '=';
    url += params[i].value;
  }
}

int32_t OrvWebPageUrl::CompareParamNames(const OrvUrlParam* a, const OrvUrlParam* b) {
  int32_t la = a->name.len, lb = b->name.len;
  int32_t common = la < lb ? la : lb;
  if (common <= 16) {
    // Short names, compared in place as unsigned bytes, as Orvmemcmp does.
    const unsigned char* x = reinterpret_cast<const unsigned char*>(a->name.buf);
    const unsigned char* y = reinterpret_cast<const unsigned char*>(b->name.buf);
    for (int32_t i = 0; i < common; i++)
      if (x[i] != y[i]) return int32_t(x[i]) - int32_t(y[i]);
  } else if (int c = Orvmemcmp(a->name.buf, b->name.buf, common)) {
    return c;
  }
  return la - lb;  // both in 0..INT32_MAX, so this cannot overflow
}

void OrvWebPageUrl::AssignParams(OrvUrlParam*& to, int32_t& toCount, int32_t& toCapacity,
                                 const OrvUrlParam* from, int32_t fromCount) {
  if (to == from && to) {
    toCount = fromCount;
    return;
  }
  if (fromCount < 0 || !from) fromCount = 0;
  if (toCapacity < fromCount) {
    OrvDeleteArray(to);
    toCapacity = OrvGrowCapacity(int64_t(fromCount) + 1);
    to = OrvNewArray<OrvUrlParam>(size_t(toCapacity));
  }
  toCount = fromCount;
  for (int32_t i = 0; i < fromCount; i++) to[i] = from[i];
}

void OrvWebPageUrl::GetParamNames(OrvString& names, const OrvWebPageUrl& url) {
  if (url.paramCount < 1) {
    names.CopyBuf("[No Query String]", 17);
    return;
  }
  long size = url.paramCount;
  for (int32_t i = 0; i < url.paramCount; i++) size += url.params[i].name.len;
  names.Clear();
  names.Reserve(size);
  for (int32_t i = 0; i < url.paramCount; i++) {
    if (i) names += ',';
    names += url.params[i].name;
  }
}
