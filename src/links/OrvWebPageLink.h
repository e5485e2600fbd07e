#pragma once

#include "core/OrvPtrList.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvWebPageUrl.h"

// One recorded link: the parsed URL plus what the caller gave with it. The
// caller's value and label are stored and handed back, never looked into.
struct OrvWebPageLink : OrvWebPageUrl {
  void* userData = nullptr;
  OrvString label;
};

// Lists at every level of the class tree hold only pointers to the records,
// which stay in the link pool.
using OrvLinkList = OrvList<OrvWebPageLink*>;
