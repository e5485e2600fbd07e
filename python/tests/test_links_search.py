import orvwebpage
import pytest

ENTRY = "http://web.site.test/"
PAGE = r"(.htm\E,.html\E,.phtml\E,.shtml\E,.jsp\E,.php\E,.asp\E,.ksp\E)"
IMAGE = r"(.jpg\E,.png\E,.ico\E)"
FIVE = ["http://web.site.test/news/1.html?id=1", "http://web.site.test/news/2.html?id=2",
        "http://web.site.test/about.html", "http://web.site.test/img/a.jpg",
        "http://other.test/x.html"]


def test_classes_come_in_map_order_with_links_in_add_order():
    marker = object()
    links = [(url, f"label {n}", marker if n == 3 else n) for n, url in enumerate(FIVE, 1)]
    classes = orvwebpage.classify_links(links, entry=ENTRY)
    assert [(c.key, [tuple(link) for link in c.links]) for c in classes] == [
        (rf"\$;;/{PAGE};^?", [(FIVE[2], "label 3", marker)]),
        (rf"\$;/\s;/{PAGE};?id", [(FIVE[0], "label 1", 1), (FIVE[1], "label 2", 2)]),
        (rf"\$;/\s;/{IMAGE};^?", [(FIVE[3], "label 4", 4)]),
        (rf"^\$;;/{PAGE};^?", [(FIVE[4], "label 5", 5)]),
    ]


@pytest.mark.parametrize("link,want", [
    ("http://h.test/a", ("http://h.test/a", "", None)),
    ((b"http://h.test/a", b"A"), (b"http://h.test/a", b"A", None)),
    ((b"http://h.test/a",), (b"http://h.test/a", b"", None)),
    (["  http://h.test/a\t", None, 7], ("http://h.test/a", "", 7)),
    ((b"http://h.test/\xff", b"\xfe"), (b"http://h.test/\xff", b"\xfe", None)),
])
def test_link_forms(link, want):
    (only,) = orvwebpage.classify_links([link])
    assert [tuple(x) for x in only.links] == [want]
    assert isinstance(only.key, type(want[0]))


def test_reusable_object_reads_again_and_clears():
    classes = orvwebpage.LinkClasses(entry=ENTRY)
    classes.extend(FIVE[:2])
    classes.add(FIVE[2], "About")
    first = classes.classify()
    assert len(classes) == 3 and classes.classify() == first
    classes.clear()
    assert len(classes) == 0 and classes.classify() == []
    classes.add(FIVE[4])
    assert [c.key for c in classes.classify()] == [rf"^\$;;/{PAGE};^?"]


@pytest.mark.parametrize("call", [
    lambda: orvwebpage.classify_links("http://h.test/"),
    lambda: orvwebpage.classify_links([5]),
    lambda: orvwebpage.classify_links([("u", 5)]),
    lambda: orvwebpage.classify_links([("u", "l", None, "extra")]),
    lambda: orvwebpage.classify_links(["u"], entry=1),
    lambda: orvwebpage.UrlSearch().add(None),
    lambda: orvwebpage.UrlSearch().search(3),
    lambda: orvwebpage.UrlSearch().extend(b"http://h.test/"),
])
def test_wrong_types_raise_type_error(call):
    with pytest.raises(TypeError):
        call()


def test_search_gives_each_searchs_own_finds():
    search = orvwebpage.UrlSearch(entry="https://www.site.test/")
    search.extend(["https://site.test/news/12/a.html?page=1&id=3",
                   "https://site.test/news/12/a.html?id=3&page=1",
                   "https://other.test/news/1/b.html?page=1&id=3",
                   "https://site.test/news/x/b.php?page=5&id=9"])
    key, found = search.search("https://site.test/news/9/b.htm?page=2&id=7")
    assert key == r"\$/\s/\d/" + PAGE + "?page;&id"
    assert found == ["https://site.test/news/12/a.html?page=1&id=3"]
    key, found = search.search(b"https://site.test/a/b/c.html?page=1&id=1")
    assert found == [b"https://site.test/news/x/b.php?page=5&id=9"] and isinstance(key, bytes)
    search.clear()
    assert len(search) == 0 and search.search("https://site.test/news/9/b.htm?page=2&id=7")[1] == []
