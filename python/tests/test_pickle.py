import pickle

import orvwebpage
import pytest


def url_parts(url):
    return (type(url.url), url.url, url.scheme, url.host, url.dirs, url.stem, url.ext, url.params,
            url.param_names)


def edited(url):
    url.host = url.host[:0] + url.host + url.host[:0]
    url.dirs = url.dirs + [url.stem]
    url.params = url.params[:1]
    return url


# Each value comes back equal, of the same kind of text, and keeps working:
# an edited Url keeps its edits, parses nothing anew and rebuilds alike.
@pytest.mark.parametrize("make", [
    lambda: orvwebpage.Url("http://h.test/x/y/z.html?b=2&a=1#top"),
    lambda: orvwebpage.Url(b"http://h.test/x/\xff.html?b=2&a=1", sort=False),
    lambda: edited(orvwebpage.Url("https://h.test/a/b.php?q=1&r=2")),
    lambda: orvwebpage.Url(""),
])
def test_url_round_trip(make):
    url = make()
    for protocol in range(2, pickle.HIGHEST_PROTOCOL + 1):
        again = pickle.loads(pickle.dumps(url, protocol))
        assert type(again) is orvwebpage.Url and url_parts(again) == url_parts(url)
        assert again.keys() == url.keys() and again.rebuild() == make().rebuild()


@pytest.mark.parametrize("value", [
    orvwebpage.classify_links(["http://a.test/p/1", ("http://a.test/p/2", "two", {"k": [1]}),
                               (b"http://a.test/q?id=3", b"three")]),
    orvwebpage.visible_blocks("<body><ul id=m><li class=e>1</li><li class=e>2</li></ul>x</body>"),
])
def test_records_round_trip(value):
    again = pickle.loads(pickle.dumps(value))
    assert again == value and repr(again) == repr(value)


def test_misuse():
    url = orvwebpage.Url.__new__(orvwebpage.Url)
    with pytest.raises(ValueError):
        url.__setstate__(("too", "short"))
