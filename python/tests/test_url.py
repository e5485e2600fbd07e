import pathlib

import orvwebpage
import pytest

PARSE_TABLE = pathlib.Path(__file__).resolve().parents[2] / "tests" / "data" / "url" / "parse.tsv"
ESCAPES = {"t": b"\t", "n": b"\n", "r": b"\r", "f": b"\f", "v": b"\v", "0": b"\0", "\\": b"\\"}


def unescape(field):
    """The C++ tables spell bytes a line cannot hold as \\xHH, \\t, \\0 and the like."""
    out, i = bytearray(), 0
    while i < len(field):
        if field[i:i + 2] == b"\\x" and i + 3 < len(field):
            out.append(int(field[i + 2:i + 4], 16))
            i += 4
        elif field[i:i + 1] == b"\\" and field[i + 1:i + 2].decode("latin-1") in ESCAPES:
            out += ESCAPES[field[i + 1:i + 2].decode("latin-1")]
            i += 2
        else:
            out += field[i:i + 1]
            i += 1
    return bytes(out)


def parse_rows():
    for line in PARSE_TABLE.read_bytes().split(b"\n"):
        if not line or line == b"#" or line.startswith(b"# "):
            continue
        fields = line.split(b"\t")
        fields += [b""] * (10 - len(fields))
        yield pytest.param(unescape(fields[0]), *fields[1:], id=fields[0].decode(errors="replace"))


# The rows of the C++ parse table, read from it: every text parses alike from Python.
@pytest.mark.parametrize("text,sort,scheme,host,dirs,stem,ext,params,names,rebuilt", parse_rows())
def test_parse_table(text, sort, scheme, host, dirs, stem, ext, params, names, rebuilt):
    url = orvwebpage.Url(text, sort=sort == b"1")
    got = (url.scheme, url.host, b",".join(url.dirs), url.stem, url.ext,
           b"&".join(n + b"=" + v for n, v in url.params), url.param_names)
    assert got == (scheme, host, dirs, stem, ext, params, names)
    assert url.url == text.strip()
    assert url.rebuild() == rebuilt and url.url == rebuilt
    try:
        as_str = text.decode()
        rebuilt_str = rebuilt.decode()
    except UnicodeDecodeError:
        return
    url = orvwebpage.Url(as_str, sort=sort == b"1")
    assert url.rebuild() == rebuilt_str


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
