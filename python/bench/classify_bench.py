#!/usr/bin/env python3
"""Classifying 100,000 links from Python against the C++ benchmark on the same links.

    PYTHONPATH=build/python python3 python/bench/classify_bench.py [--build build] [--links N]

Both sides count the CPU time of the calling thread. The C++ figure is
build/bench/url_classify's BM_AddAndClassify (AddLink for each link, then
ClassifyUrls); the Python one is classify_links on a list of str, with the
classes and their Link records built.
"""

import argparse
import json
import pathlib
import statistics
import subprocess
import time

import orvwebpage

SOURCE = pathlib.Path(__file__).resolve().parents[2]
ENTRY = "https://medium.com/"


def vary(link, r):
    """Copy r of a link, as the C++ benchmark makes it: tag r after each
    directory name and before each parameter value."""
    if r == 0:
        return link
    tag = str(r)
    scheme = link.find("://")
    path = link.find("/", 0 if scheme < 0 else scheme + 3)
    query = link.find("?", 0 if path < 0 else path)
    out = []
    for i, c in enumerate(link):
        in_path = path >= 0 and path < i and (query < 0 or i < query)
        if in_path and c == "/" and link[i - 1] != "/":
            out.append(tag)
        out.append(c)
        if query >= 0 and i > query and c == "=":
            out.append(tag)
    return "".join(out)


def make_links(n):
    base = (SOURCE.parent / "shared" / "data" / "links.txt").read_bytes().split(b"\n")
    if base and base[-1] == b"":
        base.pop()
    base = [b.decode("utf-8", "surrogateescape") for b in base]
    return [vary(base[i % len(base)], i // len(base)) for i in range(n)]


def python_ms(links, runs):
    times = []
    for _ in range(runs):
        start = time.thread_time()
        classes = orvwebpage.classify_links(links, entry=ENTRY)
        times.append((time.thread_time() - start) * 1e3)
        del classes
    return statistics.median(times), len(orvwebpage.classify_links(links, entry=ENTRY))


def cpp_ms(build, n):
    out = subprocess.run(
        [str(build / "bench" / "url_classify"), f"--benchmark_filter=BM_AddAndClassify/{n}$",
         "--benchmark_format=json"], capture_output=True, text=True, check=True).stdout
    (run,) = json.loads(out)["benchmarks"]
    return run["add_ms"] + run["classify_ms"], int(run["classes"])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", default=str(SOURCE / "build"))
    parser.add_argument("--links", type=int, default=100000, choices=(10000, 100000, 1000000))
    parser.add_argument("--runs", type=int, default=7)
    args = parser.parse_args()
    links = make_links(args.links)
    py, py_classes = python_ms(links, args.runs)
    cpp, cpp_classes = cpp_ms(pathlib.Path(args.build), args.links)
    print(f"links           {args.links}")
    print(f"C++ add+classify  {cpp:8.2f} ms CPU  ({cpp_classes} classes)")
    print(f"Python classify   {py:8.2f} ms CPU  ({py_classes} classes)")
    print(f"ratio             {py / cpp:8.2f}")
    return 0 if py_classes == cpp_classes else 1


if __name__ == "__main__":
    raise SystemExit(main())
