// Which encoding a page decodes by: byte-order mark, HTTP charset, meta
// declaration, valid UTF-8, else windows-1252.

#include <gtest/gtest.h>

#include <string>

#include "orvwebpage/OrvHtml.h"

namespace {

// The text runs of the page, joined by "|".
std::string Texts(std::string page, ORV_CHARSET charset, const char* contentType) {
  OrvHtml doc;
  if (doc.Open(page.data(), long(page.size()), charset, contentType) != 0) return "(failed)";
  std::string out;
  WalkItems(
      doc.root, 1,
      [](var_item* item, int32_t, void* user) {
        auto* s = static_cast<std::string*>(user);
        if (item->tag_id != 0) return;
        if (!s->empty()) *s += '|';
        s->append(item->text, size_t(item->text_len));
      },
      &out);
  return out;
}

TEST(OrvHtmlCharset, DecidesAsBrowsersDo) {
  const char* k1251 = "\xD0\x9F\xD1\x80\xD0\xB8";  // "При" read as windows-1251
  struct Case {
    const char* what;
    std::string page;
    const char* contentType;
    ORV_CHARSET charset;
    std::string texts;
  } cases[] = {
      {"a UTF-8 byte-order mark beats HTTP and meta",
       "\xEF\xBB\xBF<meta charset=windows-1251><p>caf\xC3\xA9", "text/html; charset=windows-1251",
       ORV_CHARSET_UTF8, "caf\xC3\xA9"},
      {"a UTF-16BE byte-order mark", std::string("\xFE\xFF\0<\0p\0>\0\xE9", 10), nullptr,
       ORV_CHARSET_UTF8, "\xC3\xA9"},
      {"the HTTP charset beats meta", "<meta charset=utf-8><p>\xCF\xF0\xE8",
       "text/html; charset=windows-1251", ORV_CHARSET_UTF8, k1251},
      {"a Latin-1 label reads as windows-1252", "<p>\x80\xE9", "text/html;Charset=\"ISO-8859-1\"",
       ORV_CHARSET_UTF8, "\xE2\x82\xAC\xC3\xA9"},
      {"an unknown HTTP charset leaves it to meta", "<meta charset=windows-1251><p>\xCF\xF0\xE8",
       "text/html; charset=no-such-thing", ORV_CHARSET_UTF8, k1251},
      {"meta http-equiv Content-Type",
       "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=windows-1251\">"
       "<p>\xCF\xF0\xE8",
       nullptr, ORV_CHARSET_UTF8, k1251},
      {"blanks and quotes around a meta charset",
       "<meta charset = ' windows-1251 ' ><p>\xCF\xF0\xE8", nullptr, ORV_CHARSET_UTF8, k1251},
      {"a content charset without http-equiv counts for nothing",
       "<meta content=\"text/html; charset=windows-1251\"><p>\xCF\xF0\xE8", nullptr,
       ORV_CHARSET_UTF8, "\xC3\x8F\xC3\xB0\xC3\xA8"},
      {"a meta inside a comment counts for nothing",
       "<!-- <meta charset=windows-1251> --><p>caf\xC3\xA9", nullptr, ORV_CHARSET_UTF8,
       "caf\xC3\xA9"},
      {"a meta in the body counts for nothing", "<body><meta charset=windows-1251><p>caf\xC3\xA9",
       nullptr, ORV_CHARSET_UTF8, "caf\xC3\xA9"},
      {"meta UTF-16 in a page read that far is UTF-8", "<meta charset=utf-16><p>caf\xC3\xA9",
       nullptr, ORV_CHARSET_UTF8, "caf\xC3\xA9"},
      {"undeclared valid UTF-8", "<p>caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80", nullptr,
       ORV_CHARSET_UTF8, "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80"},
      {"undeclared invalid UTF-8 is windows-1252, holes as C1 controls",
       "<p>\x80 \x81 \x9F caf\xE9", nullptr, ORV_CHARSET_UTF8,
       "\xE2\x82\xAC \xC2\x81 \xC5\xB8 caf\xC3\xA9"},
      {"a cut UTF-8 sequence at the end is not UTF-8", "<p>caf\xC3", nullptr, ORV_CHARSET_UTF8,
       "caf\xC3\x83"},
      {"an overlong form is not UTF-8", "<p>\xC0\xAF", nullptr, ORV_CHARSET_UTF8,
       "\xC3\x80\xC2\xAF"},
      {"an encoded surrogate is not UTF-8", "<p>\xED\xA0\x80", nullptr, ORV_CHARSET_UTF8,
       "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},
      {"bytes stay bytes whatever HTTP says", "<p>\xCF\xF0", "text/html; charset=windows-1251",
       ORV_CHARSET_BYTES, "\xCF\xF0"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Texts(c.page, c.charset, c.contentType), c.texts) << c.what;
  }
}

}  // namespace
