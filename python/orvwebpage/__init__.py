"""Web-page analysers: URL shapes, link classes, URL search, visible-text
classes, page links and site page-count estimates.

Texts: str or bytes in; out in the same kind. str input goes in as UTF-8, and
library bytes that are not UTF-8 come out of it with U+FFFD; bytes stay bytes.
"""

__license__ = "Apache-2.0"

from ._orvwebpage import (
    Block as Block,
    EstimateListing as EstimateListing,
    EstimateProbe as EstimateProbe,
    EstimateResult as EstimateResult,
    EstimateShape as EstimateShape,
    Link as Link,
    LinkClass as LinkClass,
    LinkClasses as LinkClasses,
    PageLink as PageLink,
    SizeResult as SizeResult,
    Url as Url,
    UrlSearch as UrlSearch,
    __version__ as __version__,
    classify_links as classify_links,
    estimate as estimate,
    page_links as page_links,
    resolve_url as resolve_url,
    size as size,
    visible_blocks as visible_blocks,
    visible_nodes as visible_nodes,
)

__all__ = [
    "Block",
    "EstimateListing",
    "EstimateProbe",
    "EstimateResult",
    "EstimateShape",
    "Link",
    "LinkClass",
    "LinkClasses",
    "PageLink",
    "SizeResult",
    "Url",
    "UrlSearch",
    "classify_links",
    "estimate",
    "page_links",
    "resolve_url",
    "size",
    "visible_blocks",
    "visible_nodes",
]

# Classes show and pickle under the package's name, where users find them.
for _name in __all__:
    _item = globals()[_name]
    if isinstance(_item, type) and _item.__module__ != __name__:
        _item.__module__ = __name__
del _name, _item
