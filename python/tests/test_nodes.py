import json
import subprocess

import orvwebpage
import pytest
from conftest import BIN_DIR, DATA_DIR

PAGE = "<html><body><ul><li class=e>one</li><li class=e>two</li></ul>three</body></html>"


@pytest.mark.parametrize("name", ["bbc-1.html", "wikipedia-2.html", "heise.html"])
def test_real_page_classes_equal_the_tools(name):
    path = DATA_DIR / "pages" / name
    out = subprocess.run([str(BIN_DIR / "orvwebpage"), "nodes", "--json", str(path)],
                         capture_output=True, text=True, check=True).stdout
    want = [c["items"] for c in json.loads(out)["classes"]]
    blocks, page = orvwebpage.visible_nodes(path.read_bytes())
    assert len(blocks) > 0 and blocks + [page] == want


@pytest.mark.parametrize("page,charset,want", [
    (PAGE, "utf-8", ([["one", "two"]], ["one", "two", "three"])),
    (PAGE.encode(), "bytes", ([[b"one", b"two"]], [b"one", b"two", b"three"])),
    # A str is read as it is, whatever it declares; a bytes page by its declaration.
    ("<meta charset=iso-8859-1><p>\u00e9&nbsp;</p>", "utf-8", ([], ["\u00e9\u00a0"])),
    (b"<meta charset=iso-8859-1><p>\xe9</p>", "utf-8", ([], ["\u00e9"])),
    (b"<meta charset=iso-8859-1><p>\xe9</p>", "bytes", ([], [b"\xe9"])),
    ("\ufeff<p>x</p>", "utf-8", ([], ["x"])),
    (b"<p>\xff\xfe</p>", "bytes", ([], [b"\xff\xfe"])),
    ("", "utf-8", ([], [])),
])
def test_page_forms(page, charset, want):
    assert orvwebpage.visible_nodes(page, charset=charset) == want


def test_misuse():
    with pytest.raises(TypeError):
        orvwebpage.visible_nodes(["<p>x</p>"])
    with pytest.raises(ValueError):
        orvwebpage.visible_nodes("<p>x</p>", charset="latin-1")


# The blocks carry the tool's paths beside the visible_nodes texts.
@pytest.mark.parametrize("name", ["bbc-1.html", "wikipedia-2.html", "heise.html"])
def test_real_page_block_paths_equal_the_tools(name):
    path = DATA_DIR / "pages" / name
    out = subprocess.run([str(BIN_DIR / "orvwebpage"), "nodes", "--json", str(path)],
                         capture_output=True, text=True, check=True).stdout
    want = json.loads(out)["classes"]
    blocks, page = orvwebpage.visible_blocks(path.read_bytes())
    assert [(b.path, b.texts) for b in blocks] == [(c["path"], c["items"]) for c in want[:-1]]
    assert "path" not in want[-1] and page == want[-1]["items"]
    assert all([step.split(".")[0].split("#")[0] for step in b.path.split(" > ")[:2]] ==
               ["html", "body"] for b in blocks)
    assert (blocks and [b.texts for b in blocks], page) == \
        (blocks and orvwebpage.visible_nodes(path.read_bytes())[0], page)


def test_block_paths_follow_the_charset():
    page = "<body><ul id=\u00e9><li class=e>1</li><li class=e>2</li></ul>x</body>"
    assert orvwebpage.visible_blocks(page)[0] == [("html > body > ul#\u00e9", ["1", "2"])]
    assert orvwebpage.visible_blocks(page.encode(), charset="bytes")[0] == \
        [(b"html > body > ul#\xc3\xa9", [b"1", b"2"])]
