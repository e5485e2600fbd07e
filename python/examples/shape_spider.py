#!/usr/bin/env python3
"""A Scrapy spider that crawls a site politely by shape.

On each page it sorts the links into classes of like URL shape and follows only
a few links of each class it has not met before, so one page stands for its
whole kind (one story for all stories, one listing page for the listing).

    python3 shape_spider.py URL [--per-class N] [--delay SECONDS] [--output FILE]

Writes one JSON line per page read: {"url": ..., "status": ...}.
"""

import argparse
import urllib.parse
from typing import Any, Iterator

import scrapy
from orvwebpage.scrapy import ShapeLinkExtractor
from scrapy.crawler import CrawlerProcess


class ShapeSpider(scrapy.Spider):
    name = "shape"

    def __init__(self, start_url: str, per_class: int = 2, **kwargs: Any) -> None:
        super().__init__(**kwargs)
        self.start_urls = [start_url]
        site = urllib.parse.urlsplit(start_url)
        self.links = ShapeLinkExtractor(allow_domains=[site.hostname or ""], per_shape=per_class,
                                        entry=start_url)
        self.port = site.port
        self.seen_classes: set[str] = set()

    def start_requests(self) -> Iterator[Any]:
        # Filtered like any other request, so a link home is not read twice.
        yield scrapy.Request(self.start_urls[0], callback=self.parse)

    def parse(self, response: Any) -> Iterator[Any]:
        yield {"url": response.url, "status": response.status}
        for key, links in self.links.shape_links(response).items():
            if key in self.seen_classes:
                continue
            self.seen_classes.add(key)
            for link in links:
                if urllib.parse.urlsplit(link.url).port == self.port:
                    yield response.follow(link, callback=self.parse)


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("url", help="where the crawl starts")
    parser.add_argument("--per-class", type=int, default=2, help="links followed per new class")
    parser.add_argument("--delay", type=float, default=1.0, help="seconds between requests")
    parser.add_argument("--output", default="-", help="JSON lines file (default: stdout)")
    args = parser.parse_args()
    output = "stdout:" if args.output == "-" else args.output
    process = CrawlerProcess(settings={
        "ROBOTSTXT_OBEY": True,
        "DOWNLOAD_DELAY": args.delay,
        "CONCURRENT_REQUESTS_PER_DOMAIN": 1,
        "USER_AGENT": "orvwebpage-shape-spider (+polite: a few pages per shape)",
        "TELNETCONSOLE_ENABLED": False,
        "REQUEST_FINGERPRINTER_IMPLEMENTATION": "2.7",
        "LOG_LEVEL": "WARNING",
        "FEEDS": {output: {"format": "jsonlines", "overwrite": True}},
    })
    process.crawl(ShapeSpider, start_url=args.url, per_class=args.per_class)
    process.start()


if __name__ == "__main__":
    main()
