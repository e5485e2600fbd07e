#include "orvwebpage/OrvPageLinks.h"

#include <cstdint>
#include <vector>

#include "core/OrvMemory.h"
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

struct RawLink {
  const char* href;
  int32_t hrefLen;
  OrvString label;
};

template <class T>
using OrvVector = std::vector<T, OrvAllocator<T>>;

}  // namespace

class OrvPageLinksImpl {
 public:
  OrvVector<OrvString> urls;
  OrvVector<OrvString> labels;
  int hasBase = 0;

  // Gathered in one walk; the hrefs point into the page's tree.
  OrvVector<RawLink> raw;
  OrvVector<std::pair<int32_t, size_t>> open;  // depth of an open link, its index
  const var_attr* base = nullptr;

  // The walk visits parents before children, so the links open around an
  // item are those on the stack at a smaller depth: no climbing per text run,
  // which a deeply nested page would make quadratic.
  static void Visit(var_item* item, int32_t depth, void* user) {
    auto* self = static_cast<OrvPageLinksImpl*>(user);
    while (!self->open.empty() && self->open.back().first >= depth) self->open.pop_back();
    if (item->tag_id == ORV_TAG_LINK) {
      const var_attr* target = FindLinkAttr(item->attr_list);
      if (!target) return;
      self->raw.push_back({target->value, MeasuredLen(target->value, target->value_len), {}});
      self->open.emplace_back(depth, self->raw.size() - 1);
    } else if (item->tag_id == 0 && item->text && !self->open.empty()) {
      // Runs are kept apart by a space: the markup between them often stands
      // for a break (a heading and a summary inside one link).
      OrvString& label = self->raw[self->open.back().second].label;
      if (label.len > 0 && label.buf[label.len - 1] != ' ') label += ' ';
      AppendWords(label, item->text, MeasuredLen(item->text, item->text_len));
    } else if (IsNamed(item, "area", 4)) {
      const var_attr* target = FindAttrByName(item->attr_list, "href", 4);
      if (!target) return;
      RawLink& link = self->raw.emplace_back(
          RawLink{target->value, MeasuredLen(target->value, target->value_len), {}});
      if (const var_attr* alt = FindAttrByName(item->attr_list, "alt", 3))
        AppendWords(link.label, alt->value, MeasuredLen(alt->value, alt->value_len));
    } else if (!self->base && IsNamed(item, "base", 4)) {
      self->base = FindAttrByName(item->attr_list, "href", 4);
    }
  }
};

OrvPageLinks::OrvPageLinks() : impl(OrvNew<OrvPageLinksImpl>()) {}

OrvPageLinks::~OrvPageLinks() { OrvDelete(impl); }

int OrvPageLinks::Read(var_item* root, const char* pageUrl, long len) {
  impl->urls.clear();
  impl->labels.clear();
  impl->raw.clear();
  impl->open.clear();
  impl->base = nullptr;
  if (root) WalkItems(root, 1, &OrvPageLinksImpl::Visit, impl);

  OrvUrlResolver pageResolver, resolver;
  pageResolver.SetBase(pageUrl, pageUrl ? len : 0);
  const OrvUrlResolver* use = &pageResolver;
  if (impl->base) {
    OrvString base;
    if (pageResolver.Resolve(impl->base->value,
                             MeasuredLen(impl->base->value, impl->base->value_len), base) &&
        resolver.SetBase(base.buf, base.len))
      use = &resolver;
  }
  impl->hasBase = use->HasBase();

  impl->urls.reserve(impl->raw.size());
  impl->labels.reserve(impl->raw.size());
  for (RawLink& link : impl->raw) {
    OrvString& url = impl->urls.emplace_back();
    if (!impl->hasBase || !use->Resolve(link.href, link.hrefLen, url))
      url.CopyBuf(link.href ? link.href : "", link.hrefLen);
    while (link.label.len > 0 && link.label.buf[link.label.len - 1] == ' ')
      link.label.Cutlen(link.label.len - 1);
    impl->labels.push_back(std::move(link.label));
  }
  impl->raw.clear();
  impl->open.clear();
  impl->base = nullptr;
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
