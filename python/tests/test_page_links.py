"""page_links and resolve_url against the library's own case tables."""

import re

import orvwebpage
import pytest
from conftest import SOURCE_DIR

TABLES = SOURCE_DIR / "tests" / "data" / "pagelinks"
_ESCAPES = {b"t": b"\t", b"n": b"\n", b"r": b"\r", b"f": b"\f", b"v": b"\v", b"0": b"\0",
            b"\\": b"\\"}


def unescape(field):
    """The case files' escapes: \\t \\n \\r \\f \\v \\0 \\\\ and \\xHH; bytes out."""
    def one(m):
        return bytes([int(m.group(1), 16)]) if m.group(1) else _ESCAPES[m.group(2)]
    return re.sub(rb"\\(?:x([0-9a-fA-F]{2})|([tnrfv0\\]))", one, field.encode())


def rows(name):
    for line in (TABLES / name).read_text(encoding="utf-8").splitlines():
        if line and line != "#" and not line.startswith("# "):
            yield [unescape(field) for field in line.split("\t")]


RESOLVE = list(rows("resolve.tsv"))
PAGES = list(rows("pages.tsv"))


# Relative paths, ../, //host, ?q, #f, javascript: and mailto: among them;
# bytes in give bytes out, and a str href gives the same as str.
@pytest.mark.parametrize("base,href,want", RESOLVE)
def test_resolve_table(base, href, want):
    assert orvwebpage.resolve_url(base, href) == (want or None)
    text = href.decode("utf-8", "surrogateescape")
    assert orvwebpage.resolve_url(base.decode("utf-8", "surrogateescape"), text) == \
        (want.decode("utf-8", "replace") if want else None)


# The page table: links resolved against the page URL and <base> (with and
# without a trailing slash), in document order, duplicates kept, labels folded.
@pytest.mark.parametrize("row", PAGES)
def test_page_table(row):
    url, page, links = row[0], row[1], row[3:]
    want = [(links[i], links[i + 1]) for i in range(0, len(links) - 1, 2)]
    assert orvwebpage.page_links(page, url, charset="bytes") == want
    assert orvwebpage.page_links(page.decode("utf-8", "replace"), url.decode()) == \
        [(u.decode("utf-8", "replace"), lab.decode("utf-8", "replace")) for u, lab in want]


def test_kinds_and_misuse():
    page = "<a href='caf\u00e9?q=\u00e9'>Caf\u00e9</a>"
    assert orvwebpage.page_links(page, "http://s.test/a/") == \
        [("http://s.test/a/caf%C3%A9?q=%C3%A9", "Caf\u00e9")]
    assert orvwebpage.page_links(b"", b"http://s.test/") == []
    with pytest.raises(TypeError):
        orvwebpage.page_links(None, "http://s.test/")
    with pytest.raises(TypeError):
        orvwebpage.page_links("<a href=x>x</a>", None)
    with pytest.raises(ValueError):
        orvwebpage.page_links("<a href=x>x</a>", "http://s.test/", charset="latin-1")
