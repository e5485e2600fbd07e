#!/usr/bin/python3
"""The true page count of a bench site: a full breadth-first crawl from its
home page that follows every <a> and <area> link on the same host and port
(robots.txt not asked), and counts the distinct URLs that answer 200 with an
HTML body. A redirect counts once, at its target. Fragments are dropped;
queries are kept as written. Bounded by --max fetches.

    real-site-crawl.py URL [--max N] [--list FILE]      prints the count
"""
import argparse
import html.parser
import sys
import urllib.error
import urllib.parse
import urllib.request


class Links(html.parser.HTMLParser):
    def __init__(self):
        super().__init__(convert_charrefs=True)
        self.base = None
        self.hrefs = []

    def handle_starttag(self, tag, attrs):
        a = dict(attrs)
        if tag == "base" and self.base is None and a.get("href"):
            self.base = a["href"]
        elif tag in ("a", "area") and a.get("href"):
            self.hrefs.append(a["href"].strip())


class NoRedirect(urllib.request.HTTPRedirectHandler):
    def redirect_request(self, req, fp, code, msg, headers, newurl):
        return None


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("url")
    ap.add_argument("--max", type=int, default=20000)
    ap.add_argument("--list")
    args = ap.parse_args()
    start = urllib.parse.urlsplit(args.url)
    origin = (start.scheme, start.netloc)
    opener = urllib.request.build_opener(NoRedirect)
    queue = [urllib.parse.urldefrag(args.url)[0]]
    seen = set(queue)
    pages = []
    fetches = 0
    while queue and fetches < args.max:
        url = queue.pop(0)
        fetches += 1
        try:
            with opener.open(url, timeout=30) as r:
                kind = r.headers.get_content_type()
                body = r.read(20_000_000) if kind == "text/html" else b""
                status = r.status
        except urllib.error.HTTPError as e:
            status, kind, body = e.code, "", b""
            target = e.headers.get("Location") if 300 <= e.code < 400 else None
            if target:
                nxt = urllib.parse.urldefrag(urllib.parse.urljoin(url, target))[0]
                parts = urllib.parse.urlsplit(nxt)
                if (parts.scheme, parts.netloc) == origin and nxt not in seen:
                    seen.add(nxt)
                    queue.append(nxt)
            continue
        except (urllib.error.URLError, OSError) as e:
            print("real-site-crawl: %s: %s" % (url, e), file=sys.stderr)
            continue
        if status != 200 or kind != "text/html":
            continue
        pages.append(url)
        parser = Links()
        parser.feed(body.decode("utf-8", "replace"))
        base = urllib.parse.urljoin(url, parser.base) if parser.base else url
        for href in parser.hrefs:
            nxt = urllib.parse.urldefrag(urllib.parse.urljoin(base, href))[0]
            parts = urllib.parse.urlsplit(nxt)
            if (parts.scheme, parts.netloc) != origin or nxt in seen:
                continue
            seen.add(nxt)
            queue.append(nxt)
    if queue:
        print("real-site-crawl: stopped after %d fetches, %d URLs left" % (fetches, len(queue)),
              file=sys.stderr)
    if args.list:
        with open(args.list, "w") as f:
            f.write("".join(p + "\n" for p in sorted(pages)))
    print(len(pages))
    return 0 if not queue else 1


if __name__ == "__main__":
    sys.exit(main())
