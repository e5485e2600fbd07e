"""A Scrapy link extractor that gives a few links per URL shape of a page.

    from orvwebpage.scrapy import ShapeLinkExtractor

    extractor = ShapeLinkExtractor(allow_domains=["site.test"], deny=[r"/login"])
    for link in extractor.extract_links(response):
        yield response.follow(link, callback=self.parse)

The links of a response are read as a browser resolves them (`page_links`),
filtered like Scrapy's own extractor filters them, and sorted into classes of
like URL shape (`classify_links`); each class gives its first `per_shape`
links. `shape_links` gives the classes themselves, keyed by shape, for a spider
that remembers which shapes it has met.
"""

from __future__ import annotations

import re
import urllib.parse
from typing import Any, Iterable, Optional, Pattern, Union

from scrapy.http import TextResponse
from scrapy.link import Link

from . import classify_links, page_links

Patterns = Union[str, Pattern[str], Iterable[Union[str, Pattern[str]]]]


def _compile(patterns: Optional[Patterns]) -> list[Pattern[str]]:
    if patterns is None:
        return []
    if isinstance(patterns, (str, re.Pattern)):
        patterns = [patterns]
    return [p if isinstance(p, re.Pattern) else re.compile(p) for p in patterns]


def _domains(domains: Optional[Union[str, Iterable[str]]]) -> list[str]:
    if domains is None:
        return []
    if isinstance(domains, str):
        domains = [domains]
    return [d.lower().strip(".") for d in domains]


def _in_domains(host: str, domains: list[str]) -> bool:
    return any(host == d or host.endswith("." + d) for d in domains)


class ShapeLinkExtractor:
    """Links of a response, `per_shape` of each URL shape, in document order.

    allow, deny: regular expressions (one or a list) searched in the absolute
    URL; a link must match one of allow (when given) and none of deny.
    allow_domains, deny_domains: host names; a domain covers its subdomains.
    entry: the URL whose domain counts as the site when shapes are keyed
    (default: the response's URL). unique: drop repeated URLs. Fragments are
    dropped from the URLs, and only http(s) links are given.
    """

    def __init__(self, allow: Optional[Patterns] = (), deny: Optional[Patterns] = (),
                 allow_domains: Optional[Union[str, Iterable[str]]] = (),
                 deny_domains: Optional[Union[str, Iterable[str]]] = (),
                 per_shape: int = 1, entry: Optional[str] = None, unique: bool = True) -> None:
        if per_shape < 1:
            raise ValueError("per_shape must be at least 1")
        self.allow = _compile(allow)
        self.deny = _compile(deny)
        self.allow_domains = _domains(allow_domains)
        self.deny_domains = _domains(deny_domains)
        self.per_shape = per_shape
        self.entry = entry
        self.unique = unique

    def matches(self, url: str) -> bool:
        """Whether a URL passes the filters."""
        parts = urllib.parse.urlsplit(url)
        if parts.scheme not in ("http", "https"):
            return False
        host = (parts.hostname or "").lower()
        if self.allow_domains and not _in_domains(host, self.allow_domains):
            return False
        if _in_domains(host, self.deny_domains):
            return False
        if self.allow and not any(p.search(url) for p in self.allow):
            return False
        return not any(p.search(url) for p in self.deny)

    def shape_links(self, response: Any) -> dict[str, list[Link]]:
        """The classes of the response's links by shape key, in class order,
        each with its first `per_shape` links."""
        if not isinstance(response, TextResponse):
            return {}
        seen: set[str] = set()
        links: list[tuple[str, str]] = []
        for url, label in page_links(response.text, response.url):
            assert isinstance(url, str) and isinstance(label, str)
            url = urllib.parse.urldefrag(url)[0]
            if not self.matches(url) or (self.unique and url in seen):
                continue
            seen.add(url)
            links.append((url, label))
        classes: dict[str, list[Link]] = {}
        for link_class in classify_links(links, entry=self.entry or response.url):
            key = str(link_class.key)
            classes[key] = [Link(str(link.url), text=str(link.label))
                            for link in link_class.links[:self.per_shape]]
        return classes

    def extract_links(self, response: Any) -> list[Link]:
        """`per_shape` links of every shape, classes in class order."""
        return [link for links in self.shape_links(response).values() for link in links]
