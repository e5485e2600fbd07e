#pragma once

#include <libxml/HTMLparser.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/OrvMemory.h"
#include "orvwebpage/OrvItem.h"
#include "orvwebpage/OrvLinkHtml.h"
#include "platform/html/OrvDocArena.h"
#include "platform/html/OrvNameCache.h"
#include "platform/html/OrvRawBodies.h"

// What of the page the tree keeps.
enum class OrvTreeScope {
  kWhole,
  // What links are read from: a, area and base elements with their href and
  // alt attributes, and the texts inside an a element, each under its nearest
  // kept ancestor, in document order.
  kLinks,
  // What visible texts and their classes are read from: text runs whose
  // parent is an element other than script, style and title, and the
  // elements above them with their id and class attributes, in document order.
  kTexts,
};

// Builds the var_item forest in an arena from the parser's events, as they
// come: the parser keeps no tree of its own.
class OrvTreeBuilder {
 public:
  // keepBytes maps the parser's Latin-1 reading back to the page's bytes.
  // bodies, when not null, lists the script and style bodies cut out of the
  // page being parsed, which lie in uncut.
  OrvTreeBuilder(OrvDocArena& arena, bool keepBytes, const char* uncut, OrvRawBodies* bodies,
                 OrvTreeScope scope = OrvTreeScope::kWhole);
  OrvTreeBuilder(const OrvTreeBuilder&) = delete;
  OrvTreeBuilder& operator=(const OrvTreeBuilder&) = delete;

  // Events of the parser whose context is ctxt and whose user data is this.
  static htmlSAXHandler Handler();

  htmlParserCtxtPtr ctxt = nullptr;
  // When set, each top-level item goes to it once complete and the arena is
  // emptied after it, so first only ever holds the items of one.
  const OrvLinkSink* sink = nullptr;
  var_item* first = nullptr;
  bool lost = false;  // a cut body was not met where it was cut: parse again

  void StartElement(const char* name, const char** atts);
  void EndElement();
  void Characters(const char* chars, size_t count);
  void OnError(const xmlError* error);
  // Makes the text run so far an item, unless it is only ASCII whitespace.
  void FlushText();
  // Hands what the top level holds to the sink, if any.
  void HandOver();

 private:
  void TakeRawBody(bool style);
  void Lose();
  var_item* NewItem();
  var_attr* NewAttr(const char* name, const char* value);
  void Append(var_item* item);
  void PushLevel(var_item* item);
  bool Keeps(const OrvCachedName& name) const;
  bool KeepsAttr(const char* name) const;
  void Defer(const OrvCachedName& name, const char** atts);
  bool EndDeferred();
  bool TextIsVisible() const;
  void MakeDeferredItems();

  OrvDocArena& arena;
  // Copies of names when the arena is emptied after each top-level item.
  OrvDocArena names;
  bool keepBytes;
  OrvNameCache tags;
  OrvNameCache attrs;
  var_item* current = nullptr;  // the open element; null at the top level
  var_item* lastTop = nullptr;
  // Last child of each open kept element, outermost first.
  std::vector<var_item*, OrvAllocator<var_item*>> lastChild;
  // Open elements not kept, above the top level and above each kept one: a
  // page nested deep in elements not kept costs no memory per level.
  std::vector<uint64_t, OrvAllocator<uint64_t>> dropped{0};
  // Open elements that are no items yet (kTexts): one becomes an item when a
  // visible text comes below it. A run of one name with the same kept
  // attributes is one entry, so a page nested deep in one tag costs nothing
  // per level.
  struct Deferred {
    OrvCachedName name;
    size_t attrsFrom;  // its attributes in deferredAttrs, up to the next entry's
    uint64_t count;
  };
  std::vector<Deferred, OrvAllocator<Deferred>> deferred;
  // Name pointer of the parser, then the value and a NUL, for each kept attribute.
  std::vector<char, OrvAllocator<char>> deferredAttrs;
  size_t openLinks = 0;  // open kept elements that are links
  size_t runLength = 0;  // bytes of the text run gathered at the arena's cursor
  uint64_t strayEndTagCost = 0;
  const char* uncut;
  OrvRawBodies* bodies;
  OrvTreeScope scope;
  const uint16_t kScript;
  const uint16_t kStyle;
};
