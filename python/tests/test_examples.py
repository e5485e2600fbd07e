import json
import os
import subprocess
import sys
import urllib.parse

import pytest
from conftest import EXAMPLES_DIR, tool_estimate


def run_example(name, *args, timeout=120):
    return subprocess.run([sys.executable, str(EXAMPLES_DIR / name), *args], capture_output=True,
                          text=True, timeout=timeout, env=dict(os.environ))


# Page kinds of the sample sites by path: what a crawl by shape must reach.
KINDS = {
    "mixed": {"plain": {"/", "/about.html", "/contact.htm", "/help", "/tag"},
              "listing": {"/news", "/blog", "/shop"},
              "article": {"/story", "/post", "/product"}},
    "example": {"plain": {"/"}, "listing": {"/list"}, "article": {"/article"}},
}


@pytest.mark.parametrize("profile", ["mixed", "example"])
def test_spider_reaches_every_kind_with_few_requests(sample_site, profile, tmp_path):
    site = sample_site("--profile", profile, "--pages", "2000")
    out = tmp_path / "pages.jl"
    run = run_example("shape_spider.py", site.url, "--delay", "0", "--output", str(out))
    assert run.returncode == 0, run.stderr
    paths = {urllib.parse.urlsplit(json.loads(line)["url"]).path
             for line in out.read_text().splitlines()}
    for kind, kind_paths in KINDS[profile].items():
        assert kind_paths <= paths, kind
    assert len(site.log_lines()) <= site.true_pages // 8


@pytest.mark.filterwarnings("ignore:make_current is deprecated")
@pytest.mark.parametrize("where", ["local cluster", "scheduler address"])
def test_dask_estimates_equal_the_tools(sample_site, where, tmp_path):
    sites = [sample_site("--profile", p) for p in ("example", "offset", "last13")]
    want = [tool_estimate(s.url) for s in sites]
    listing = tmp_path / "sites.txt"
    listing.write_text("# three sites\n" + "\n".join(s.url for s in sites) + "\n\n")
    args = [str(listing)]
    cluster = None
    if where == "scheduler address":
        from dask.distributed import LocalCluster
        # Workers of two threads: estimates in one process must still not mix.
        cluster = LocalCluster(n_workers=1, threads_per_worker=2, processes=True,
                               host="127.0.0.1", dashboard_address=None)
        args += ["--scheduler", cluster.scheduler_address]
    try:
        run = run_example("dask_estimate.py", *args)
    finally:
        if cluster:
            cluster.close()
    assert run.returncode == 0, run.stderr
    got = [json.loads(line) for line in run.stdout.splitlines()]
    assert [(g["url"], g["estimate"], g["requests"]) for g in got] == \
        [(s.url, *w) for s, w in zip(sites, want)]


# Sites side by side on threads give what the tool gives for each alone; an
# unreadable site is its own error line and makes the status 1.
def test_thread_pool_estimates_equal_the_tools(sample_site, tmp_path):
    sites = [sample_site("--profile", p) for p in ("example", "offset", "last13", "single")]
    want = [tool_estimate(s.url) for s in sites]
    listing = tmp_path / "sites.txt"
    listing.write_text("\n".join(s.url for s in sites) + "\nhttp://127.0.0.1:1/\n")
    run = run_example("thread_pool_estimate.py", str(listing), "--jobs", "4")
    assert run.returncode == 1, run.stderr
    got = [json.loads(line) for line in run.stdout.splitlines()]
    assert [(g["url"], g["estimate"], g["requests"]) for g in got[:-1]] == \
        [(s.url, *w) for s, w in zip(sites, want)]
    assert got[-1] == {"url": "http://127.0.0.1:1/", "error": "no readable page came back"}
