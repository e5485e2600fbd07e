import json
import subprocess
import threading
import time

import orvwebpage
import pytest
from conftest import BIN_DIR


def tool_size(url, *args):
    out = subprocess.run([str(BIN_DIR / "orvwebpage"), "size", "--json", "--explain", url, *args],
                         capture_output=True, text=True, timeout=120, check=True).stdout
    return json.loads(out)


@pytest.mark.parametrize("profile", ["pathpager", "sitemap", "single"])
def test_size_equals_the_tools(sample_site, profile):
    site = sample_site("--profile", profile)
    want = tool_size(site.url)
    site.clear_log()
    result = orvwebpage.size(site.url)
    assert tuple(result) == (want["pages"], want["low"], want["high"], want["source"])
    assert result.requests == want["requests"] == len(site.log_lines())
    assert result.crawl["pages"] == want["crawl"]["pages"]
    assert [l["template"] for l in result.explanation["listings"]] == \
        [l["template"] for l in want["listings"]]
    assert result.low <= site.true_pages <= result.high and not result.stopped


def test_budget_and_stop(sample_site):
    site = sample_site("--profile", "mixed", "--pages", "2000")
    assert orvwebpage.size(site.url, max_requests=12).requests <= 12
    stop = threading.Event()
    threading.Timer(0.3, stop.set).start()
    result = orvwebpage.size(site.url, delay=0.1, stop=stop)
    assert result.stopped and result.requests < 20
    with pytest.raises(ValueError):
        orvwebpage.size(site.url, max_requests=0)


# The deadline and the memory budget end a measure and say so; 0 lifts them.
@pytest.mark.parametrize("limits,reason", [
    ({"deadline": 0.3, "delay": 0.1}, "deadline"),
    ({"max_memory": 1}, "memory budget"),
    ({"deadline": 0, "max_memory": 0}, None),
])
def test_limits_say_why(sample_site, limits, reason):
    site = sample_site("--profile", "mixed", "--pages", "2000")
    start = time.monotonic()
    result = orvwebpage.size(site.url, **limits)
    assert (result.partial, result.reason) == (reason is not None, reason)
    assert reason != "deadline" or time.monotonic() - start < 1.5


# hosts confine the run as the tool's --hosts does; a malformed pattern is refused.
def test_hosts(sample_site):
    site = sample_site("--profile", "pathpager")
    want = tool_size(site.url, "--hosts", "127.0.0.1")
    assert tuple(orvwebpage.size(site.url, hosts=["127.0.0.1"])) == \
        (want["pages"], want["low"], want["high"], want["source"])
    elsewhere = orvwebpage.size(site.url, hosts="elsewhere.test")
    assert (elsewhere.source, elsewhere.pages) == ("none", 0)
    with pytest.raises(ValueError):
        orvwebpage.size(site.url, hosts=["bad host!"])
    with pytest.raises(TypeError):
        orvwebpage.size(site.url, hosts=[5])
