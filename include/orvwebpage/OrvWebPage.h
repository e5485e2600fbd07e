#pragma once

// Everything a user of the library needs.
#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvHtml.h"
#include "orvwebpage/OrvHttp.h"
#include "orvwebpage/OrvHttpLimits.h"
#include "orvwebpage/OrvHttpRun.h"
#include "orvwebpage/OrvItem.h"
#include "orvwebpage/OrvPageLinks.h"
#include "orvwebpage/OrvString.h"
#include "orvwebpage/OrvSys.h"
#include "orvwebpage/OrvUrlFilterExtractor.h"
#include "orvwebpage/OrvVersion.h"
#include "orvwebpage/OrvWebPageCountEstimate.h"
#include "orvwebpage/OrvWebPageUrl.h"
#include "orvwebpage/OrvWebPageUrls.h"
#include "orvwebpage/OrvWebPageUrlsSearch.h"
#include "orvwebpage/OrvWebPageVisibleNodes.h"
