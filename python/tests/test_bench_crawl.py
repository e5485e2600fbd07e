"""The bench's true-count crawl (bench/real-site-crawl.py) and the trust table
set against it (bench/trust.sh): what counts as a page, and how the goal lines
are reckoned, must hold for the README's figures to mean anything."""

import http.server
import json
import re
import subprocess
import sys
import threading

import pytest

from conftest import SOURCE_DIR

CRAWL = SOURCE_DIR / "bench" / "real-site-crawl.py"
TRUST = SOURCE_DIR / "bench" / "trust.sh"

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
    # Stand-ins for the real sites of the trust table; linked from nowhere.
    **{"/site%d/" % i: (200, {"Content-Type": HTML}, "<p>site</p>") for i in range(1, 5)},
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


# site: true pages, what size answers, what estimate answers
TRUST_SITES = {
    "site1": (100, {"pages": 150, "low": 90, "high": 200, "source": "crawl", "requests": 30},
              {"estimate": 100, "requests": 3}),
    "site2": (100, {"pages": 40, "low": 30, "high": 60, "source": "sitemap", "requests": 70},
              {"estimate": 250, "requests": 1}),
    "site3": (200, {"pages": 210, "low": 100, "high": 190, "source": "crawl", "requests": 10},
              {"estimate": 400, "requests": 2}),
    "site4": (50, {"error": "connection refused"}, {"estimate": 25, "requests": 1}),
}
FAKE_TOOL = """#!/usr/bin/python3
import json, sys
answers = json.load(open(%r))
if sys.argv[1] == "--help":
    print("Subcommands:\\n  size                        How many pages")
else:
    print(json.dumps(answers[sys.argv[-1]][sys.argv[1]]))
"""
GOALS = [
    # Within 2x: 150 and 210 (40 is not, a failed run has no figure); median of the errors
    # 50%, 60%, 5% and 100% (no figure); most requests 70; only 90-200 holds its true count.
    r"^size: within 2x of the true count on 2 of 4 .*median error 55% .*at most 70 requests"
    r".*range holds the true count on 1 of 4",
    # Exactly twice and half the true count are within 2x; errors 0%, 150%, 100%, 50%.
    r"^estimate: within 2x of the true count on 3 of 4 .*median error 75% .*at most 3 requests",
]


def test_trust_table_goal_lines(site, tmp_path):
    answers, rows = {}, ["# site\tURL\ttrue pages\tnotes"]
    for name, (true, size, estimate) in TRUST_SITES.items():
        url = "%s/%s/" % (site, name)
        answers[url] = {"size": size, "estimate": estimate}
        rows.append("%s\t%s\t%d\tmade up" % (name, url, true))
    (tmp_path / "answers.json").write_text(json.dumps(answers))
    (tmp_path / "sites.tsv").write_text("\n".join(rows) + "\n")
    tool = tmp_path / "orvwebpage"
    tool.write_text(FAKE_TOOL % str(tmp_path / "answers.json"))
    tool.chmod(0o755)
    run = subprocess.run(["bash", str(TRUST), "--tool", str(tool), "--sites",
                          str(tmp_path / "sites.tsv")], capture_output=True, text=True, timeout=120)
    assert run.returncode == 0, run.stderr
    for goal in GOALS:
        assert re.search(goal, run.stdout, re.M), run.stdout
    assert "| site3 | 200 | 210 | 100-190 | crawl | 10 (0 logged) | 1.05 | 400 |" in run.stdout
