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

import orvwebpage
import scrapy
from scrapy.crawler import CrawlerProcess


class ShapeSpider(scrapy.Spider):
    name = "shape"

    def __init__(self, start_url, per_class=2, **kwargs):
        super().__init__(**kwargs)
        self.start_urls = [start_url]
        self.per_class = per_class
        self.site = urllib.parse.urlsplit(start_url).netloc
        self.seen_classes = set()

    def start_requests(self):
        # Filtered like any other request, so a link home is not read twice.
        yield scrapy.Request(self.start_urls[0], callback=self.parse)

    def parse(self, response):
        yield {"url": response.url, "status": response.status}
        if not isinstance(response, scrapy.http.TextResponse):
            return
        links = []
        for anchor in response.css("a[href]"):
            url = response.urljoin(anchor.attrib["href"])
            parts = urllib.parse.urlsplit(url)
            if parts.scheme in ("http", "https") and parts.netloc == self.site:
                links.append((url, " ".join(anchor.css("::text").getall()).strip()))
        for link_class in orvwebpage.classify_links(links, entry=self.start_urls[0]):
            if link_class.key in self.seen_classes:
                continue
            self.seen_classes.add(link_class.key)
            for link in link_class.links[:self.per_class]:
                yield response.follow(link.url, callback=self.parse)


def main():
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
