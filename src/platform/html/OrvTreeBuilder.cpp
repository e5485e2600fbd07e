#include "platform/html/OrvTreeBuilder.h"

#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

#include "platform/html/OrvHtmlNames.h"
#include "platform/html/OrvPageBytes.h"

namespace {

char kTextName[] = "$text";
char kEmptyValue[] = "";

// An end tag that matches no open element makes the parser scan its whole
// stack of open elements, so a deep page followed by many stray end tags
// costs depth times tags. Past this many scanned entries the rest of the page
// is dropped instead of letting the parse run for hours.
constexpr uint64_t kStrayEndTagBudget = uint64_t(1) << 28;

bool IsAsciiSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f'; }

OrvTreeBuilder* Of(void* user) { return static_cast<OrvTreeBuilder*>(user); }

void OnStartElement(void* user, const xmlChar* name, const xmlChar** atts) {
  Of(user)->StartElement(reinterpret_cast<const char*>(name), reinterpret_cast<const char**>(atts));
}

void OnEndElement(void* user, const xmlChar*) { Of(user)->EndElement(); }

void OnCharacters(void* user, const xmlChar* chars, int count) {
  if (count > 0) Of(user)->Characters(reinterpret_cast<const char*>(chars), size_t(count));
}

void OnStructuredError(void* user, xmlErrorPtr error) { Of(user)->OnError(error); }

}  // namespace

OrvTreeBuilder::OrvTreeBuilder(OrvDocArena& into, bool latin1Bytes, const char* page,
                               OrvRawBodies* cutBodies, OrvTreeScope what)
    : arena(into),
      keepBytes(latin1Bytes),
      tags(OrvHtmlTagNumber),
      attrs(OrvHtmlAttrNumber),
      uncut(page),
      bodies(cutBodies),
      scope(what),
      kScript(OrvHtmlTagNumber("script")),
      kStyle(OrvHtmlTagNumber("style")) {}

htmlSAXHandler OrvTreeBuilder::Handler() {
  htmlSAXHandler sax;
  std::memset(&sax, 0, sizeof(sax));
  sax.startElement = OnStartElement;
  sax.endElement = OnEndElement;
  // Script and style bodies arrive as CDATA, whitespace the parser thinks
  // ignorable as such: all of it is text of the run.
  sax.characters = OnCharacters;
  sax.cdataBlock = OnCharacters;
  sax.ignorableWhitespace = OnCharacters;
  sax.initialized = XML_SAX2_MAGIC;  // so the structured error hook is used
  sax.serror = OnStructuredError;
  return sax;
}

bool OrvTreeBuilder::Keeps(const OrvCachedName& name) const {
  if (scope == OrvTreeScope::kWhole || name.number == ORV_TAG_LINK) return true;
  if (scope == OrvTreeScope::kTexts) return false;
  return CapsEqual(name.copy, name.length, "area", 4) ||
         CapsEqual(name.copy, name.length, "base", 4);
}

// Links are read from href and, on an area, alt; a block's likeness and path
// from class and id.
bool OrvTreeBuilder::KeepsAttr(const char* name) const {
  if (scope == OrvTreeScope::kWhole) return true;
  int32_t length = int32_t(std::strlen(name));
  if (scope == OrvTreeScope::kTexts)
    return CapsEqual(name, length, "class", 5) || CapsEqual(name, length, "id", 2);
  return CapsEqual(name, length, "href", 4) || CapsEqual(name, length, "alt", 3);
}

void OrvTreeBuilder::StartElement(const char* name, const char** atts) {
  FlushText();
  const OrvCachedName& cached = tags.Get(name, sink ? names : arena);
  bool raw = bodies && (cached.number == kScript || cached.number == kStyle);
  if (scope == OrvTreeScope::kTexts) {
    Defer(cached, atts);
    if (raw) TakeRawBody(cached.number == kStyle);
    return;
  }
  if (!Keeps(cached)) {
    dropped.back()++;
    if (raw) TakeRawBody(cached.number == kStyle);
    return;
  }
  var_item* item = NewItem();
  item->tag_id = cached.number;
  item->name = cached.copy;
  item->name_len = cached.length;
  var_attr** tail = &item->attr_list;
  for (size_t i = 0; atts && atts[i]; i += 2) {
    if (!KeepsAttr(atts[i])) continue;
    var_attr* attr = NewAttr(atts[i], atts[i + 1]);
    *tail = attr;
    tail = &attr->next;
  }
  Append(item);
  PushLevel(item);
  if (raw) TakeRawBody(cached.number == kStyle);
}

// The parser has just read a script or style start tag up to its '>'.
void OrvTreeBuilder::TakeRawBody(bool style) {
  if (lost || bodies->next == bodies->list.size()) return;
  const xmlParserInput* in = ctxt->input;
  size_t at = size_t(in->consumed) + size_t(in->cur - in->base);
  const OrvRawBody& body = bodies->list[bodies->next];
  if (at < body.tagEnd) return;  // not cut: the parser reads it
  if (at > body.tagEnd || *in->cur != '>' || body.style != style) return Lose();
  bodies->next++;
  uint64_t strayEndTags = 0;
  bool read = OrvReadRawBody(
      uncut + body.from, body.to - body.from,
      [](const char* run, size_t length, void* user) { Of(user)->Characters(run, length); }, this,
      strayEndTags);
  // Each end tag inside that does not close the element is a mismatch the
  // parser would have reported; the budget must count them alike.
  strayEndTagCost += strayEndTags * (uint64_t(ctxt->nameNr > 0 ? ctxt->nameNr : 0) + 1);
  if (!read || strayEndTagCost > kStrayEndTagBudget) Lose();
}

void OrvTreeBuilder::EndElement() {
  FlushText();
  if (EndDeferred()) return;
  if (dropped.back() > 0) {
    dropped.back()--;
    return;
  }
  if (lastChild.empty()) return;
  if (current->tag_id == ORV_TAG_LINK) openLinks--;
  lastChild.pop_back();
  if (scope == OrvTreeScope::kLinks) dropped.pop_back();
  current = current->parent;
  if (!current) HandOver();
}

// No text run is pending here: every caller has just flushed it, or the
// parse is over.
void OrvTreeBuilder::HandOver() {
  if (!sink || !first) return;
  sink->take(first, sink->user);
  first = nullptr;
  lastTop = nullptr;
  arena.Reset();
}

// The run is written where its item's text will lie: at the arena's
// cursor, which nothing else moves until FlushText.
void OrvTreeBuilder::Characters(const char* chars, size_t count) {
  if (count == 0 || (scope == OrvTreeScope::kLinks && openLinks == 0)) return;
  char* run = arena.TextRoom(runLength, count);
  if (keepBytes) {
    runLength +=
        OrvUtf8ToPageBytes(run + runLength, reinterpret_cast<const unsigned char*>(chars), count);
  } else {
    std::memcpy(run + runLength, chars, count);
    runLength += count;
  }
}

void OrvTreeBuilder::OnError(const xmlError* error) {
  if (error->code != XML_ERR_TAG_NAME_MISMATCH || !ctxt) return;
  strayEndTagCost += uint64_t(ctxt->nameNr > 0 ? ctxt->nameNr : 0) + 1;
  if (strayEndTagCost > kStrayEndTagBudget) xmlStopParser(ctxt);
}

void OrvTreeBuilder::FlushText() {
  if (runLength == 0) return;
  size_t length = runLength;
  runLength = 0;
  if (length > size_t(INT32_MAX)) return;
  char* text = arena.TextRoom(length, 0);
  size_t i = 0;
  while (i < length && IsAsciiSpace(text[i])) i++;
  if (i == length) return;
  if (scope == OrvTreeScope::kTexts && !TextIsVisible()) return;
  text[length] = '\0';
  arena.Alloc(length + 1);
  // Only now: the items are bumped out of the arena, where the run lay.
  if (scope == OrvTreeScope::kTexts) MakeDeferredItems();
  var_item* item = NewItem();
  item->name = kTextName;
  item->name_len = 5;
  item->text = text;
  item->text_len = static_cast<int32_t>(length);
  Append(item);
}

void OrvTreeBuilder::Defer(const OrvCachedName& name, const char** atts) {
  size_t from = deferredAttrs.size();
  for (size_t i = 0; atts && atts[i]; i += 2) {
    if (!KeepsAttr(atts[i])) continue;
    const char* value = atts[i + 1] ? atts[i + 1] : "";
    const char* key = atts[i];
    deferredAttrs.insert(deferredAttrs.end(), reinterpret_cast<const char*>(&key),
                         reinterpret_cast<const char*>(&key) + sizeof key);
    deferredAttrs.insert(deferredAttrs.end(), value, value + std::strlen(value) + 1);
  }
  // The same name with the same kept attributes as the innermost entry: one
  // more of it.
  if (!deferred.empty() && deferred.back().name.copy == name.copy) {
    size_t previous = deferred.back().attrsFrom;
    size_t length = from - previous;
    if (deferredAttrs.size() - from == length &&
        std::equal(deferredAttrs.begin() + std::ptrdiff_t(previous),
                   deferredAttrs.begin() + std::ptrdiff_t(from),
                   deferredAttrs.begin() + std::ptrdiff_t(from))) {
      deferredAttrs.resize(from);
      deferred.back().count++;
      return;
    }
  }
  deferred.push_back(Deferred{name, from, 1});
}

// Closes the innermost open element if it is deferred; false when it is an item.
bool OrvTreeBuilder::EndDeferred() {
  if (deferred.empty()) return false;
  Deferred& last = deferred.back();
  if (--last.count == 0) {
    deferredAttrs.resize(last.attrsFrom);
    deferred.pop_back();
  }
  return true;
}

// Whether the text run at hand passes the visibility test the analysers
// apply: a parent, and one whose text is shown.
bool OrvTreeBuilder::TextIsVisible() const {
  uint16_t parent;
  if (!deferred.empty())
    parent = deferred.back().name.number;
  else if (current)
    parent = current->tag_id;
  else
    return false;
  return parent != ORV_TAG_NO_TEXT_A && parent != ORV_TAG_NO_TEXT_B && parent != ORV_TAG_NO_TEXT_C;
}

// The deferred elements become items, outermost first: a visible text is
// about to come below them.
void OrvTreeBuilder::MakeDeferredItems() {
  for (const Deferred& open : deferred) {
    for (uint64_t k = 0; k < open.count; k++) {
      var_item* item = NewItem();
      item->tag_id = open.name.number;
      item->name = open.name.copy;
      item->name_len = open.name.length;
      const char* at = deferredAttrs.data() + open.attrsFrom;
      const char* end = &open == &deferred.back() ? deferredAttrs.data() + deferredAttrs.size()
                                                  : deferredAttrs.data() + (&open + 1)->attrsFrom;
      var_attr** tail = &item->attr_list;
      while (at < end) {
        const char* key;
        std::memcpy(&key, at, sizeof key);
        const char* value = at + sizeof key;
        at = value + std::strlen(value) + 1;
        var_attr* attr = NewAttr(key, value);
        *tail = attr;
        tail = &attr->next;
      }
      Append(item);
      PushLevel(item);
    }
  }
  deferred.clear();
  deferredAttrs.clear();
}

void OrvTreeBuilder::Lose() {
  lost = true;
  xmlStopParser(ctxt);
}

var_item* OrvTreeBuilder::NewItem() {
  var_item* item = static_cast<var_item*>(arena.Alloc(sizeof(var_item)));
  *item = var_item{};
  return item;
}

var_attr* OrvTreeBuilder::NewAttr(const char* name, const char* value) {
  var_attr* attr = static_cast<var_attr*>(arena.Alloc(sizeof(var_attr)));
  *attr = var_attr{};
  const OrvCachedName& cached = attrs.Get(name, sink ? names : arena);
  attr->attr_id = cached.number;
  attr->name = cached.copy;
  attr->name_len = cached.length;
  size_t length = value ? std::strlen(value) : 0;
  if (length == 0 || length > size_t(INT32_MAX)) {
    attr->value = kEmptyValue;
    return attr;
  }
  char* copy = static_cast<char*>(arena.Alloc(length + 1));
  if (keepBytes) {
    length = OrvUtf8ToPageBytes(copy, reinterpret_cast<const unsigned char*>(value), length);
  } else {
    std::memcpy(copy, value, length);
  }
  copy[length] = '\0';
  attr->value = copy;
  attr->value_len = static_cast<int32_t>(length);
  return attr;
}

// Links item as the last child of the open element, or at the top level.
void OrvTreeBuilder::Append(var_item* item) {
  item->parent = current;
  var_item*& last = lastChild.empty() ? lastTop : lastChild.back();
  if (last) {
    last->next = item;
  } else if (current) {
    current->child = item;
  } else {
    first = item;
  }
  last = item;
}

void OrvTreeBuilder::PushLevel(var_item* item) {
  lastChild.push_back(nullptr);
  if (scope == OrvTreeScope::kLinks) dropped.push_back(0);
  if (item->tag_id == ORV_TAG_LINK) openLinks++;
  current = item;
}
