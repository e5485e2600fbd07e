import orvwebpage
import pytest

# Rows of the C++ parse table: text, sort, scheme, host, dirs, stem, ext, params, rebuilt.
PARSE_ROWS = [
    ("http://h.test/x/y/z.html?b=2&a=1#top", True, "http", "h.test", ["x", "y"], "z", "html",
     [("a", "1"), ("b", "2")], "http://h.test/x/y/z.html?a=1&b=2"),
    ("x/y.html", True, "", "x", [], "y", "html", [], "//x/y.html"),
    ("http://h.test/p?x=1&amp;y=2", True, "http", "h.test", [], "p", "", [("x", "1"), ("y", "2")],
     "http://h.test/p?x=1&y=2"),
    ("longe.test:80/x/y", True, "longe.test", "80", ["x"], "y", "", [], "longe.test://80/x/y"),
    ("http://h.test/p?a&b=c=d", True, "http", "h.test", [], "p", "", [("a", ""), ("b", "c")],
     "http://h.test/p?a=&b=c"),
    ("http://h.test/p?%62=%62&a=1", True, "http", "h.test", [], "p", "", [("a", "1"), ("b", "%62")],
     "http://h.test/p?a=1&b=%62"),
    ("/p?b=1&a=1&c", False, "", "", [], "p", "", [("b", "1"), ("a", "1"), ("c", "")],
     "/p?b=1&a=1&c="),
    (" \t http://h.test/a \r\n", True, "http", "h.test", [], "a", "", [], "http://h.test/a"),
    ("/a\0b/c", True, "", "", [], "a", "", [], "/a"),
]


@pytest.mark.parametrize("text,sort,scheme,host,dirs,stem,ext,params,rebuilt", PARSE_ROWS)
def test_parse_table(text, sort, scheme, host, dirs, stem, ext, params, rebuilt):
    for kind in (str, bytes):
        conv = (lambda s: s.encode()) if kind is bytes else (lambda s: s)
        url = orvwebpage.Url(conv(text), sort=sort)
        got = (url.scheme, url.host, url.dirs, url.stem, url.ext, url.params)
        want = (conv(scheme), conv(host), [conv(d) for d in dirs], conv(stem), conv(ext),
                [(conv(n), conv(v)) for n, v in params])
        assert got == want
        assert url.url == conv(text.strip(" \t\r\n"))
        assert url.rebuild() == conv(rebuilt) and url.url == conv(rebuilt)


def test_edit_and_rebuild():
    url = orvwebpage.Url("http://h.test/a/b.html?x=1")
    url.host, url.dirs, url.ext = "o.test", ["c", "d"], "php"
    url.params = [("p", "2"), ("q", "")]
    assert url.rebuild() == "http://o.test/c/d/b.php?p=2&q="
    assert url.param_names == "p,q"
    assert orvwebpage.Url("http://h.test/").param_names == "[No Query String]"


ENTRY = "https://www.site.test/"


@pytest.mark.parametrize("text,entry,want", [
    ("https://site.test/news/201/a.html?page=2&id=7", ENTRY,
     {"host": r"\$", "path": r"/\s/\d", "query": "?id;&page",
      "shape": r"\$/\s/\d/(.htm\E,.html\E,.phtml\E,.shtml\E,.jsp\E,.php\E,.asp\E,.ksp\E)?page;&id"}),
    ("http://other.test/x", ENTRY, {"host": r"^\$", "path": "", "query": "^?"}),
    ("http://web.site.test/x", None, {"host": "site.test"}),
    ("/img/1a/b.jpg", ENTRY, {"host": r"\$", "path": r"/\s/\d", "extension": r"/(.jpg\E,.png\E,.ico\E)"}),
])
def test_keys(text, entry, want):
    keys = orvwebpage.Url(text).keys(entry)
    assert sorted(keys) == ["extension", "host", "path", "query", "shape"]
    assert {name: keys[name] for name in want} == want


# Texts that are not UTF-8 never raise: bytes stay bytes, str gets U+FFFD.
def test_texts_that_are_not_utf8():
    assert orvwebpage.Url(b"http://h.test/\xff.html").stem == b"\xff"
    url = orvwebpage.Url("http://h.test/p?%ff=1")
    assert url.params == [("\ufffd", "1")]
    assert orvwebpage.Url("http://h.test/\udcff").stem == "\ufffd"


@pytest.mark.parametrize("call", [
    lambda: orvwebpage.Url(5),
    lambda: orvwebpage.Url(None),
    lambda: orvwebpage.Url("x").keys(entry=3),
    lambda: setattr(orvwebpage.Url("x"), "dirs", "a/b"),
    lambda: setattr(orvwebpage.Url("x"), "params", [("a",)]),
    lambda: setattr(orvwebpage.Url("x"), "host", 1.5),
])
def test_wrong_types_raise_type_error(call):
    with pytest.raises(TypeError):
        call()


def _available_memory():
    with open("/proc/meminfo") as meminfo:
        for line in meminfo:
            if line.startswith("MemAvailable:"):
                return int(line.split()[1]) * 1024
    return 0


# A text longer than 32-bit lengths can say is refused, never cut.
def test_text_beyond_the_length_limit_raises_value_error():
    if _available_memory() < 3 << 30:
        pytest.skip("needs 3 GiB of free memory")
    text = bytes(1 << 31)
    with pytest.raises(ValueError, match="longer than the 2147483647 bytes"):
        orvwebpage.Url(text)
