#include "orvwebpage/OrvPageLinks.h"

#include <cstdint>
#include <vector>

#include "core/OrvMemory.h"
#include "orvwebpage/OrvLinkHtml.h"
#include "pagelinks/OrvUrlResolver.h"

namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

// Appends text with every stretch of blanks made one space, none leading.
void AppendWords(OrvString& label, const char* text, int32_t length) {
  for (int32_t i = 0; i < length; i++) {
    if (!IsBlank(text[i]))
      label += text[i];
    else if (label.len > 0 && label.buf[label.len - 1] != ' ')
      label += ' ';
  }
}

bool IsNamed(const var_item* item, const char* name, int32_t length) {
  return item->name && CapsEqual(item->name, item->name_len, name, length);
}

template <class T>
using OrvVector = std::vector<T, OrvAllocator<T>>;

}  // namespace

class OrvPageLinksImpl {
 public:
  // Hrefs as written until End resolves them where they lie: the base may
  // come after links.
  OrvVector<OrvString> urls;
  OrvVector<OrvString> labels;
  int hasBase = 0;

  OrvUrlResolver pageResolver;
  bool baseSeen = false;  // the first base with an href, whose value is baseHref
  OrvString baseHref;
  OrvVector<std::pair<int32_t, size_t>> open;  // depth of an open link, its index

  // Back to the first `links` links, and to no base unless one was seen.
  void TakeBack(size_t links, bool keepBase) {
    urls.resize(links);
    labels.resize(links);
    if (keepBase) return;
    baseSeen = false;
    baseHref.Clear();
  }

  size_t Add(const var_attr* target) {
    urls.emplace_back().CopyBuf(target->value ? target->value : "",
                                MeasuredLen(target->value, target->value_len));
    labels.emplace_back();
    return labels.size() - 1;
  }

  // The walk visits parents before children, so the links open around an
  // item are those on the stack at a smaller depth: no climbing per text run,
  // which a deeply nested page would make quadratic.
  static void Visit(var_item* item, int32_t depth, void* user) {
    auto* self = static_cast<OrvPageLinksImpl*>(user);
    while (!self->open.empty() && self->open.back().first >= depth) self->open.pop_back();
    if (item->tag_id == ORV_TAG_LINK) {
      const var_attr* target = FindLinkAttr(item->attr_list);
      if (!target) return;
      self->open.emplace_back(depth, self->Add(target));
    } else if (item->tag_id == 0 && item->text && !self->open.empty()) {
      // Runs are kept apart by a space: the markup between them often stands
      // for a break (a heading and a summary inside one link).
      OrvString& label = self->labels[self->open.back().second];
      if (label.len > 0 && label.buf[label.len - 1] != ' ') label += ' ';
      AppendWords(label, item->text, MeasuredLen(item->text, item->text_len));
    } else if (IsNamed(item, "area", 4)) {
      const var_attr* target = FindAttrByName(item->attr_list, "href", 4);
      if (!target) return;
      OrvString& label = self->labels[self->Add(target)];
      if (const var_attr* alt = FindAttrByName(item->attr_list, "alt", 3))
        AppendWords(label, alt->value, MeasuredLen(alt->value, alt->value_len));
    } else if (!self->baseSeen && IsNamed(item, "base", 4)) {
      if (const var_attr* href = FindAttrByName(item->attr_list, "href", 4)) {
        self->baseSeen = true;
        self->baseHref.CopyBuf(href->value ? href->value : "",
                               MeasuredLen(href->value, href->value_len));
      }
    }
  }
};

OrvPageLinks::OrvPageLinks() : impl(OrvNew<OrvPageLinksImpl>()) {}

OrvPageLinks::~OrvPageLinks() { OrvDelete(impl); }

int OrvPageLinks::Read(var_item* root, const char* pageUrl, long len) {
  Begin(pageUrl, len);
  Add(root);
  return End();
}

void OrvPageLinks::Begin(const char* pageUrl, long len) {
  OrvVector<OrvString>().swap(impl->urls);
  OrvVector<OrvString>().swap(impl->labels);
  impl->open.clear();
  impl->hasBase = 0;
  impl->baseSeen = false;
  impl->baseHref.Clear();
  impl->pageResolver.SetBase(pageUrl, pageUrl ? len : 0);
}

void OrvPageLinks::Add(var_item* first) {
  impl->open.clear();
  if (first) WalkItems(first, 1, &OrvPageLinksImpl::Visit, impl);
  impl->open.clear();
}

int OrvPageLinks::AddPage(const char* text, long length, ORV_CHARSET charset,
                          const char* contentType) {
  // What the page added is taken back when the parser starts it over or fails.
  struct Reading {
    OrvPageLinks* links;
    size_t from;
    bool baseSeen;
    void TakeBack() const { links->impl->TakeBack(from, baseSeen); }
  } reading{this, impl->urls.size(), impl->baseSeen};
  OrvLinkSink sink{[](var_item* top, void* user) { static_cast<Reading*>(user)->links->Add(top); },
                   [](void* user) { static_cast<Reading*>(user)->TakeBack(); }, &reading};
  OrvLinkHtml doc;
  int result = doc.Stream(text, length, charset, contentType, sink);
  if (result != 0) reading.TakeBack();
  return result;
}

int OrvPageLinks::End() {
  OrvUrlResolver resolver;
  const OrvUrlResolver* use = &impl->pageResolver;
  if (impl->baseSeen) {
    OrvString base;
    if (impl->pageResolver.Resolve(impl->baseHref.buf, impl->baseHref.len, base) &&
        resolver.SetBase(base.buf, base.len))
      use = &resolver;
  }
  impl->hasBase = use->HasBase();
  if (impl->hasBase) {
    for (OrvString& url : impl->urls) {
      OrvString resolved;
      if (use->Resolve(url.buf, url.len, resolved)) url = std::move(resolved);
    }
  }
  for (OrvString& label : impl->labels)
    while (label.len > 0 && label.buf[label.len - 1] == ' ') label.Cutlen(label.len - 1);
  impl->baseHref.Clear();
  return 1;
}

int OrvPageLinks::HasBase() const { return impl->hasBase; }

int OrvPageLinks::GetCount() const { return int(impl->urls.size()); }

int OrvPageLinks::Get(int i, OrvString& url, OrvString& label) const {
  if (i < 0 || size_t(i) >= impl->urls.size()) {
    url.Clear();
    label.Clear();
    return 0;
  }
  url = impl->urls[size_t(i)];
  label = impl->labels[size_t(i)];
  return 1;
}

int OrvPageLinks::Take(int i, OrvString& url, OrvString& label) {
  if (i < 0 || size_t(i) >= impl->urls.size()) return Get(i, url, label);
  url = std::move(impl->urls[size_t(i)]);
  label = std::move(impl->labels[size_t(i)]);
  return 1;
}
