import pickle

import pytest

scrapy_http = pytest.importorskip("scrapy.http")
from orvwebpage.scrapy import ShapeLinkExtractor  # noqa: E402

PAGE = """<html><head><base href="/shop/"></head><body>
<a href="item?id=1">One</a> <a href="item?id=2">Two</a> <a href="item?id=2#more">Two again</a>
<a href="/news/2024/a.html">A</a> <a href="/news/2024/b.html">B</a>
<a href="http://cdn.other.test/x.js">cdn</a> <a href="https://sub.site.test/about">about</a>
<a href="mailto:me@site.test">mail</a> <a href="javascript:void(0)">js</a>
<a href="/login?next=1">login</a>
</body></html>"""


def response(body=PAGE, url="http://site.test/start"):
    return scrapy_http.HtmlResponse(url=url, body=body.encode(), encoding="utf-8")


def urls(links):
    return [link.url for link in links]


# One link per shape, resolved against <base>, fragments dropped, repeats and
# non-http(s) links left out, in class order; the filters as Scrapy's own.
@pytest.mark.parametrize("kwargs,want", [
    ({}, ["http://site.test/shop/item?id=1", "http://site.test/news/2024/a.html",
          "http://cdn.other.test/x.js", "https://sub.site.test/about",
          "http://site.test/login?next=1"]),
    ({"allow_domains": ["site.test"], "deny": [r"/login"]},
     ["http://site.test/shop/item?id=1", "http://site.test/news/2024/a.html",
      "https://sub.site.test/about"]),
    ({"deny_domains": "sub.site.test", "allow": r"\.(html|js)$"},
     ["http://site.test/news/2024/a.html", "http://cdn.other.test/x.js"]),
    ({"allow": r"id=", "per_shape": 5},
     ["http://site.test/shop/item?id=1", "http://site.test/shop/item?id=2"]),
    ({"allow": r"id=", "per_shape": 5, "unique": False},
     ["http://site.test/shop/item?id=1", "http://site.test/shop/item?id=2",
      "http://site.test/shop/item?id=2"]),
])
def test_one_link_per_shape(kwargs, want):
    got = ShapeLinkExtractor(**kwargs).extract_links(response())
    assert sorted(urls(got)) == sorted(want)


def test_labels_classes_and_other_responses():
    extractor = ShapeLinkExtractor(allow=r"id=", per_shape=2)
    classes = extractor.shape_links(response())
    assert [[(link.url, link.text) for link in links] for links in classes.values()] == \
        [[("http://site.test/shop/item?id=1", "One"), ("http://site.test/shop/item?id=2", "Two")]]
    binary = scrapy_http.Response(url="http://site.test/file.bin", body=b"\x00\x01")
    assert extractor.extract_links(binary) == []
    assert pickle.loads(pickle.dumps(extractor)).extract_links(response()) == \
        extractor.extract_links(response())
    with pytest.raises(ValueError):
        ShapeLinkExtractor(per_shape=0)
