#include <gtest/gtest.h>

#include <string>

#include "html/HtmlTestSupport.h"
#include "orvwebpage/OrvHtml.h"

TEST(OrvHtmlOpen, BuildsTheTreeOfThePage) {
  struct Case {
    const char* what;
    std::string page;
    ORV_CHARSET charset;
    std::string tree;
  } cases[] = {
      {"link and its target, entities decoded", "<a href=\"/x?a=1&amp;b=2\" class=nav>Go</a>",
       ORV_CHARSET_BYTES, "html\n  body\n    a href=\"/x?a=1&b=2\" class=\"nav\"\n      \"Go\"\n"},
      {"pieces of one run become one text, across references and comments",
       "<p>a &amp; b<!-- note --> c&#33;</p>", ORV_CHARSET_BYTES,
       "html\n  body\n    p\n      \"a & b c!\"\n"},
      {"whitespace-only runs make no items; others keep their blanks",
       "<ul>\n  <li> x </li>\n  <li> \t\r\n </li>\n</ul>\n", ORV_CHARSET_BYTES,
       "html\n  body\n    ul\n      li\n        \" x \"\n      li\n"},
      {"a non-breaking space is not ASCII whitespace", "<p>&nbsp;</p><p>\xA0</p>",
       ORV_CHARSET_BYTES, "html\n  body\n    p\n      \"\\xA0\"\n    p\n      \"\\xA0\"\n"},
      {"comments, processing instructions and the doctype make no items",
       "<!DOCTYPE html><!-- c --><?php x ?><html><body><!-- d --></body></html>", ORV_CHARSET_BYTES,
       "html\n  body\n"},
      {"attributes without value, repeated and in capitals",
       "<DIV ID=a Hidden data-x='1 2' id=b></DIV>", ORV_CHARSET_BYTES,
       "html\n  body\n    div id=\"a\" hidden=\"\" data-x=\"1 2\"\n"},
      {"script and style bodies are text of their element",
       "<head><title>T &amp; U</title><style>p{}</style></head><script>if (a<b) x();</script>",
       ORV_CHARSET_BYTES,
       "html\n  head\n    title\n      \"T & U\"\n    style\n      \"p{}\"\n  script\n"
       "    \"if (a<b) x();\"\n"},
      {"bytes above 127 stay themselves; references beyond Latin-1 stay UTF-8",
       "<p title='caf\xE9'>caf\xE9 &eacute;&euro;\x80</p>", ORV_CHARSET_BYTES,
       "html\n  body\n    p title=\"caf\\xE9\"\n      \"caf\\xE9 \\xE9\\xE2\\x82\\xAC\\x80\"\n"},
      {"a declared charset does not change the bytes", "<meta charset=utf-8><p>caf\xC3\xA9</p>",
       ORV_CHARSET_BYTES,
       "html\n  head\n    meta charset=\"utf-8\"\n  body\n    p\n      \"caf\\xC3\\xA9\"\n"},
      {"a byte-order mark is a byte like any other", "\xEF\xBB\xBF<p>x</p>", ORV_CHARSET_BYTES,
       "html\n  body\n    p\n      \"\\xEF\\xBB\\xBF\"\n    p\n      \"x\"\n"},
      {"a byte-order mark is skipped when decoding", "\xEF\xBB\xBF<p>x</p>", ORV_CHARSET_UTF8,
       "html\n  body\n    p\n      \"x\"\n"},
      {"NUL bytes are skipped and do not end the page",
       std::string("<p>a\0b</p>\0<p>after</p>\0", 24), ORV_CHARSET_BYTES,
       "html\n  body\n    p\n      \"ab\"\n    p\n      \"after\"\n"},
      {"NUL bytes when decoding too", std::string("<p>x</p>\0<p>after</p>", 21), ORV_CHARSET_UTF8,
       "html\n  body\n    p\n      \"x\"\n    p\n      \"after\"\n"},
      {"a wide page keeps its NUL bytes for decoding", std::string("\xFF\xFE<\0p\0>\0x\0", 10),
       ORV_CHARSET_UTF8, "html\n  body\n    p\n      \"x\"\n"},
      {"decoding by the declared charset", "<meta charset=windows-1251><p>\xCF\xF0\xE8</p>",
       ORV_CHARSET_UTF8,
       "html\n  head\n    meta charset=\"windows-1251\"\n  body\n    p\n"
       "      \"\\xD0\\x9F\\xD1\\x80\\xD0\\xB8\"\n"},
      {"declared UTF-8 stays as it is", "<meta charset=utf-8><p>caf\xC3\xA9 &euro;</p>",
       ORV_CHARSET_UTF8,
       "html\n  head\n    meta charset=\"utf-8\"\n  body\n    p\n      \"caf\\xC3\\xA9 "
       "\\xE2\\x82\\xAC\"\n"},
      {"undeclared bytes that are not UTF-8 read as Latin-1", "<p>caf\xE9</p>", ORV_CHARSET_UTF8,
       "html\n  body\n    p\n      \"caf\\xC3\\xA9\"\n"},
      {"unclosed and stray tags follow the parser's repair", "<div><p>one<p>two</span></div>tail",
       ORV_CHARSET_BYTES,
       "html\n  body\n    div\n      p\n        \"one\"\n      p\n        \"two\"\n    \"tail\"\n"},
      {"plain text is a page", "just words", ORV_CHARSET_BYTES,
       "html\n  body\n    p\n      \"just words\"\n"},
      {"empty page", "", ORV_CHARSET_BYTES, ""},
      {"whitespace page", " \n\t ", ORV_CHARSET_BYTES, ""},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(OpenAndDump(c.page, c.charset), c.tree) << c.what;
  }
}

TEST(OrvHtmlOpen, TagAndAttributeNumbers) {
  std::string page =
      "<html><head><title>t</title><style>s</style><script>x</script></head>"
      "<body><a href=/x name=n>l</a><div class=c>d</div><custom-el data-q=1>e</custom-el>"
      "<area href=/y></body></html>";
  OrvHtml doc;
  ASSERT_EQ(doc.Open(page.data(), static_cast<long>(page.size()), ORV_CHARSET_BYTES), 0);
  struct Seen {
    std::vector<std::pair<std::string, uint16_t>> tags;
    std::vector<std::pair<std::string, uint16_t>> attrs;
  } seen;
  WalkItems(
      doc.root, 1,
      [](var_item* item, int32_t, void* user) {
        Seen* s = static_cast<Seen*>(user);
        s->tags.emplace_back(std::string(item->name, static_cast<size_t>(item->name_len)),
                             item->tag_id);
        for (var_attr* a = item->attr_list; a; a = a->next) {
          s->attrs.emplace_back(std::string(a->name, static_cast<size_t>(a->name_len)), a->attr_id);
        }
      },
      &seen);
  const uint16_t reserved[] = {0, ORV_TAG_LINK, ORV_TAG_NO_TEXT_A, ORV_TAG_NO_TEXT_B,
                               ORV_TAG_NO_TEXT_C};
  for (const auto& [name, tag] : seen.tags) {
    if (name == "$text") {
      EXPECT_EQ(tag, 0);
    } else if (name == "a") {
      EXPECT_EQ(tag, ORV_TAG_LINK);
    } else if (name == "script") {
      EXPECT_EQ(tag, ORV_TAG_NO_TEXT_A);
    } else if (name == "style") {
      EXPECT_EQ(tag, ORV_TAG_NO_TEXT_B);
    } else if (name == "title") {
      EXPECT_EQ(tag, ORV_TAG_NO_TEXT_C);
    } else {
      for (uint16_t r : reserved) EXPECT_NE(tag, r) << name;
    }
  }
  EXPECT_EQ(seen.tags.size(), 16u);
  for (const auto& [name, id] : seen.attrs) {
    EXPECT_EQ(id == ORV_ATTR_LINK_TARGET, name == "href") << name << " " << id;
  }
  EXPECT_EQ(seen.attrs.size(), 5u);
  // Equal names, equal numbers, also across documents.
  std::string other = "<div><custom-el></custom-el></div>";
  OrvHtmlDoc second;
  ASSERT_EQ(second.Open(other.data(), static_cast<long>(other.size()), ORV_CHARSET_UTF8), 0);
  var_item* div = second.root->child->child;
  ASSERT_NE(div, nullptr);
  EXPECT_EQ(div->tag_id, seen.tags[11].second);
  EXPECT_EQ(div->child->tag_id, seen.tags[13].second);
}

TEST(OrvHtmlOpen, TextRecordsCarryTheContract) {
  std::string page = "<p>one</p>";
  OrvHtml doc;
  ASSERT_EQ(doc.Open(page.data(), static_cast<long>(page.size()), ORV_CHARSET_BYTES), 0);
  var_item* text = doc.root->child->child->child;
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text->tag_id, 0);
  EXPECT_EQ(text->name_len, 5);
  EXPECT_EQ(std::string(text->name, 5), "$text");
  EXPECT_EQ(text->text_len, 3);
  EXPECT_EQ(text->text[3], '\0');  // terminated too, though readers go by the length
  EXPECT_EQ(text->child, nullptr);
  EXPECT_EQ(text->attr_list, nullptr);
  EXPECT_TRUE(IsVisibleText(text));
  var_item* p = text->parent;
  EXPECT_EQ(p->text, nullptr);
  EXPECT_EQ(p->text_len, 0);
  EXPECT_EQ(doc.root->parent, nullptr);
  EXPECT_EQ(doc.root->next, nullptr);
}
