#pragma once

#include "orvwebpage/OrvExport.h"
#include "orvwebpage/OrvItem.h"
#include "orvwebpage/OrvString.h"

// Where an element sits in its page, as a CSS selector writes it: the names of
// the element and its ancestors from the top, each with its id as `#id` and
// its class words as `.word`, joined by " > ", e.g.
// "html > body > div#main > ul.posts". Characters a selector cannot hold bare
// are escaped with a backslash. Items without a name (text runs) add nothing.
// A null element gives an empty path. The climb is a loop, so no nesting
// depth grows the stack.
ORV_API void OrvItemPath(const var_item* element, OrvString& path);
