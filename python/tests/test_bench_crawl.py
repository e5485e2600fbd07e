"""The bench's true-count crawl (bench/real-site-crawl.py): every figure of the
trust table is measured against it, so what it counts as a page must hold."""

import http.server
import subprocess
import sys
import threading

import pytest

from conftest import SOURCE_DIR

CRAWL = SOURCE_DIR / "bench" / "real-site-crawl.py"

HTML = "text/html; charset=utf-8"
# path: (status, headers, body)
SITE = {
    "/": (200, {"Content-Type": HTML},
          '<a href="a.html">a</a> <a href="/b.html#part">b</a> <a href="a.html">again</a>'
          '<a href="http://other.invalid/x">away</a> <a href="/r">moved</a>'
          '<a href="/r2">moved too</a> <a href="/notes.txt">text</a> <a href="/gone">gone</a>'
          '<map><area href="/d.html"></map> <a href="/off">off</a>'),
    "/a.html": (200, {"Content-Type": HTML}, '<a href="./">home</a> <a href="b.html">b</a>'),
    "/b.html": (200, {"Content-Type": HTML}, "<p>no links</p>"),
    "/r": (302, {"Location": "/a.html"}, ""),
    "/r2": (301, {"Location": "/c.html"}, ""),
    "/c.html": (200, {"Content-Type": HTML}, "<p>c</p>"),
    "/notes.txt": (200, {"Content-Type": "text/plain"}, '<a href="/hidden.html">x</a>'),
    "/d.html": (200, {"Content-Type": HTML}, '<base href="/sub/"><a href="e.html">e</a>'),
    "/sub/e.html": (200, {"Content-Type": HTML}, "<p>e</p>"),
    "/off": (302, {"Location": "http://other.invalid/"}, ""),
}


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        status, headers, body = SITE.get(self.path, (404, {"Content-Type": HTML}, "no"))
        data = body.encode()
        self.send_response(status)
        for k, v in headers.items():
            self.send_header(k, v)
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        self.wfile.write(data)

    def log_message(self, *args):
        pass


@pytest.fixture(scope="module")
def site():
    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    thread = threading.Thread(target=server.serve_forever, daemon=True)
    thread.start()
    yield "http://127.0.0.1:%d" % server.server_address[1]
    server.shutdown()
    server.server_close()


CASES = [
    # max fetches, pages counted, exit status
    (100, ["/", "/a.html", "/b.html", "/c.html", "/d.html", "/sub/e.html"], 0),
    # A bound reached with URLs left is not a true count: it says so.
    (2, ["/", "/a.html"], 1),
]


@pytest.mark.parametrize("limit,pages,status", CASES)
def test_crawl_counts_distinct_html_pages_on_the_site(site, tmp_path, limit, pages, status):
    listing = tmp_path / "pages"
    run = subprocess.run([sys.executable, str(CRAWL), "--max", str(limit), "--list", str(listing),
                          site + "/"], capture_output=True, text=True, timeout=60)
    assert run.returncode == status, run.stderr
    assert run.stdout.strip() == str(len(pages))
    assert listing.read_text().split() == sorted(site + p for p in pages)
