import _thread
import contextlib
import http.server
import json
import pickle
import subprocess
import threading
import time

import orvwebpage
import pytest
from conftest import BIN_DIR, tool_estimate


@pytest.mark.parametrize("profile", ["example", "offset", "single"])
def test_estimate_equals_the_tools(sample_site, profile):
    site = sample_site("--profile", profile)
    want = tool_estimate(site.url)
    site.clear_log()
    result = orvwebpage.estimate(site.url)
    assert tuple(result) == want
    assert result.requests == len(site.log_lines()) and not result.stopped


def test_two_threads_at_once_each_get_their_own_count(sample_site):
    sites = [sample_site("--profile", p) for p in ("example", "offset")]
    want = [tool_estimate(s.url) for s in sites]
    got = [None, None]

    def run(i):
        got[i] = tuple(orvwebpage.estimate(sites[i].url, delay=0.01))

    threads = [threading.Thread(target=run, args=(i,)) for i in range(2)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert got == want


# None takes the defaults, which leave this site whole; 0 lifts a limit.
@pytest.mark.parametrize("limits,want_requests,reason", [
    ({"max_requests": 2}, 2, "request budget"),
    ({"max_requests": 1, "user_agent": "py-test/1"}, 1, "request budget"),
    ({"max_memory": 1}, 0, "memory budget"),
    ({"max_memory": "1K", "max_requests": 0}, 0, "memory budget"),
    ({}, None, None),
    ({"max_requests": 0, "deadline": 0, "max_memory": 0}, None, None),
    ({"max_requests": None, "deadline": None, "max_memory": "2G"}, None, None),
])
def test_limits_bind(sample_site, limits, want_requests, reason):
    site = sample_site("--profile", "mixed", "--pages", "2000")
    result = orvwebpage.estimate(site.url, **limits)
    assert result.requests == len(site.log_lines())
    assert want_requests is None or result.requests == want_requests
    assert (result.partial, result.reason) == (reason is not None, reason)


# A slow crawl (19 requests 0.2 s apart) ends soon after a stop; the event's
# timer can only fire while the crawl runs without the GIL.
def test_stop_event_and_ctrl_c_end_the_crawl_early(sample_site):
    site = sample_site("--profile", "mixed", "--pages", "2000")
    stop = threading.Event()
    threading.Timer(0.5, stop.set).start()
    start = time.monotonic()
    result = orvwebpage.estimate(site.url, delay=0.2, stop=stop)
    assert result.stopped and result.requests <= 5 and time.monotonic() - start < 2

    threading.Timer(0.5, _thread.interrupt_main).start()
    start = time.monotonic()
    with pytest.raises(KeyboardInterrupt):
        orvwebpage.estimate(site.url, delay=0.2)
    assert time.monotonic() - start < 2


@contextlib.contextmanager
def loopback_server(handle):
    """An HTTP server on 127.0.0.1 calling handle(request) for every GET."""
    class Handler(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            handle(self)

        def log_message(self, *args):
            pass

    server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
    server.daemon_threads = True
    thread = threading.Thread(target=server.serve_forever, daemon=True)
    thread.start()
    try:
        yield f"http://127.0.0.1:{server.server_address[1]}"
    finally:
        server.shutdown()
        server.server_close()


def send_page(request, body):
    request.send_response(200)
    request.send_header("Content-Type", "text/html")
    request.send_header("Content-Length", str(len(body)))
    request.end_headers()
    request.wfile.write(body)


# A pager that claims a billion pages: the 32-bit sum wraps and says so.
@pytest.mark.parametrize("top,wrapped", [(1000000000, True), (1000, False)])
def test_a_wrapped_estimate_says_so(top, wrapped):
    page = (f'<a href="/list?page=1">1</a> <a href="/list?page=2">2</a> '
            f'<a href="/list?page={top}">{top}</a>').encode()
    with loopback_server(lambda request: send_page(request, page)) as url:
        result = orvwebpage.estimate(url + "/list?page=1", timeout=10)
    assert result.wrapped == wrapped
    assert (result.estimate >= top) != wrapped


def slow_body(request):
    """Headers at once, then one byte of the body every half second."""
    request.send_response(200)
    request.send_header("Content-Type", "text/html")
    request.send_header("Content-Length", "100")
    request.end_headers()
    try:
        for _ in range(100):
            request.wfile.write(b" ")
            request.wfile.flush()
            time.sleep(0.5)
    except OSError:
        pass


def two_links(request):
    send_page(request, b'<a href="/a?id=1">a</a> <a href="/b?x=1">b</a>')


# A stop, or Ctrl-C, ends the request in flight and the wait between two
# requests at once, not when they would have ended.
@pytest.mark.parametrize("handle,delay,interrupt", [
    (slow_body, None, False),
    (two_links, 25, False),
    (slow_body, None, True),
    (two_links, 25, True),
])
def test_a_stop_ends_the_request_in_flight_and_the_delay(handle, delay, interrupt):
    with loopback_server(handle) as url:
        stop = threading.Event()
        threading.Timer(1, _thread.interrupt_main if interrupt else stop.set).start()
        start = time.monotonic()
        if interrupt:
            with pytest.raises(KeyboardInterrupt):
                orvwebpage.estimate(url + "/", delay=delay)
        else:
            assert orvwebpage.estimate(url + "/", delay=delay, stop=stop).stopped
        assert time.monotonic() - start < 2.5
# The explanation holds what --explain --json gives, field for field, and
# pickles whole; hosts confine the crawl as --hosts does.
@pytest.mark.parametrize("profile", ["example", "offset"])
def test_explanation_and_hosts_equal_the_tools(sample_site, profile):
    site = sample_site("--profile", profile)
    out = subprocess.run([str(BIN_DIR / "orvwebpage"), "estimate", "--json", "--explain",
                          "--hosts", "127.0.0.1", site.url],
                         capture_output=True, text=True, timeout=120, check=True).stdout
    want = json.loads(out)
    result = orvwebpage.estimate(site.url, hosts=["127.0.0.1"], explain=True)
    assert (result.estimate, result.requests) == (want["estimate"], want["requests"])
    assert [dict(zip(s.__match_args__, s)) for s in result.shapes] == want["shapes"]
    listings = [dict(zip(ls.__match_args__, ls), probes=[dict(zip(p.__match_args__, p))
                                                         for p in ls.probes])
                for ls in result.listings]
    for listing in want["listings"]:
        listing["last_page"] = listing.pop("lastPage")
    assert listings == want["listings"] and listings
    again = pickle.loads(pickle.dumps(result))
    assert [tuple(again) + (again.bytes, again.seconds, again.stopped, again.shapes,
                            again.listings)] == \
        [tuple(result) + (result.bytes, result.seconds, result.stopped, result.shapes,
                          result.listings)]
    assert orvwebpage.estimate(site.url).shapes is None
    assert tuple(orvwebpage.estimate(site.url, hosts="elsewhere.test,*.other.test")) == (0, 0)


@pytest.mark.parametrize("kwargs,error", [
    ({"url": 5}, TypeError),
    ({"url": "http://127.0.0.1:1/", "timeout": "slow"}, TypeError),
    ({"url": "http://127.0.0.1:1/", "stop": True}, TypeError),
    ({"url": "http://127.0.0.1:1/", "max_requests": -1}, ValueError),
    ({"url": "http://127.0.0.1:1/", "timeout": 0}, ValueError),
    ({"url": "http://127.0.0.1:1/", "deadline": -1}, ValueError),
    ({"url": "http://127.0.0.1:1/", "max_memory": "lots"}, ValueError),
    ({"url": "http://127.0.0.1:1/", "max_memory": "2X"}, ValueError),
    ({"url": "http://127.0.0.1:1/", "max_memory": -5}, ValueError),
    ({"url": "http://127.0.0.1:1/", "max_memory": 1.5}, TypeError),
    ({"url": "http://127.0.0.1:1/", "deadline": float("nan")}, ValueError),
    ({"url": "http://127.0.0.1:1/", "delay": -1}, ValueError),
    ({"url": "http://127.0.0.1:1/", "user_agent": "a\nb"}, ValueError),
    ({"url": "http://127.0.0.1:1/", "user_agent": "x" * 256}, ValueError),
    ({"url": "http://127.0.0.1:1/", "hosts": ["bad host!"]}, ValueError),
    ({"url": "http://127.0.0.1:1/", "hosts": [5]}, TypeError),
])
def test_misuse(kwargs, error):
    with pytest.raises(error):
        orvwebpage.estimate(**kwargs)


def test_nothing_to_read_gives_zero():
    assert tuple(orvwebpage.estimate("http://127.0.0.1:1/", timeout=5)) == (0, 1)


# Budgets bind per call even when the calls overlap; robots.txt is one of
# the requests unless turned off.
def test_overlapping_calls_keep_their_own_budgets(sample_site):
    site = sample_site("--profile", "mixed", "--pages", "2000")
    budgets = [1, 2, 3, 5, 8, 13]
    got = {}

    def run(budget, obey):
        result = orvwebpage.estimate(site.url, max_requests=budget, delay=0.02,
                                     obey_robots=obey)
        got[(budget, obey)] = result.requests

    threads = [threading.Thread(target=run, args=(b, o)) for b in budgets for o in (True, False)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()
    assert got == {(b, o): b for b in budgets for o in (True, False)}
    # The site has no robots.txt, which allows everything: the estimate is
    # the same, for one more request.
    alone = orvwebpage.estimate(site.url, obey_robots=False)
    obeying = orvwebpage.estimate(site.url)
    assert (obeying.estimate, obeying.requests) == (alone.estimate, alone.requests + 1)
