"""Uses the package as a typed program would; mypy --strict checks this file."""

import pickle

import orvwebpage
from orvwebpage import Block, Link, LinkClass, Url


def test_typed_use() -> None:
    assert orvwebpage.__version__.count(".") == 2
    url: Url = orvwebpage.Url("http://h.test/x/y.html?b=1")
    keys: dict[str, orvwebpage._orvwebpage.Text] = url.keys(entry="http://h.test/")
    assert keys["shape"] and url.param_names == "b"
    classes: list[LinkClass] = orvwebpage.classify_links(["http://h.test/a/1", ("http://h.test/a/2", "2")])
    first: Link = classes[0].links[0]
    assert first.url == "http://h.test/a/1" and first.obj is None
    blocks, page = orvwebpage.visible_blocks("<body><ul><li class=e>1</li><li class=e>2</li></ul>x</body>")
    block: Block = blocks[0]
    assert block.path == "html > body > ul" and block.texts == ["1", "2"] and len(page) == 3
    key, found = orvwebpage.UrlSearch().search("http://h.test/?id=1")
    assert isinstance(key, str) and found == []
    again: Url = pickle.loads(pickle.dumps(url))
    assert again.host == url.host
