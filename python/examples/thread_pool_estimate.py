#!/usr/bin/env python3
"""Estimates the page counts of a list of sites with a pool of threads.

Each call of orvwebpage.estimate crawls without the GIL within limits of its
own (budget, deadline, delay, robots.txt, connections), so threads of one
process estimate several sites side by side.

    python3 thread_pool_estimate.py SITES [--jobs N] [--max-requests N]
                                    [--deadline SECONDS] [--delay SECONDS]
                                    [--ignore-robots]

SITES is a file of entry URLs, one a line (blank lines and # comments skipped),
or - for stdin. Writes one JSON line per site, in file order:
{"url", "estimate", "requests", "seconds"}, or {"url", "error"} for a site
that could not be read; the exit status is 1 when any could not.
"""

import argparse
import json
import sys
from concurrent.futures import ThreadPoolExecutor
from typing import Any

import orvwebpage


def read_sites(path: str) -> list[str]:
    lines = sys.stdin if path == "-" else open(path, encoding="utf-8")
    with lines:
        return [s for s in (line.strip() for line in lines) if s and not s.startswith("#")]


def estimate_site(url: str, limits: dict[str, Any]) -> dict[str, Any]:
    result = orvwebpage.estimate(url, **limits)
    if result.estimate == 0:
        return {"url": url, "error": "no readable page came back"}
    return {"url": url, "estimate": result.estimate, "requests": result.requests,
            "seconds": round(result.seconds, 3)}


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("sites", help="file of entry URLs, one a line; - for stdin")
    parser.add_argument("--jobs", type=int, default=8, help="sites at once (default 8)")
    parser.add_argument("--max-requests", type=int)
    parser.add_argument("--deadline", type=float, help="seconds for each site")
    parser.add_argument("--delay", type=float, help="seconds between two requests to a site")
    parser.add_argument("--ignore-robots", action="store_true",
                        help="do not read robots.txt, nor keep to what it refuses")
    args = parser.parse_args()
    limits: dict[str, Any] = {k: v for k, v in (("max_requests", args.max_requests), ("deadline", args.deadline),
                                ("delay", args.delay)) if v is not None}
    limits["obey_robots"] = not args.ignore_robots
    failed = False
    with ThreadPoolExecutor(max_workers=max(1, args.jobs)) as pool:
        # map gives the results in input order, whichever ends first.
        for line in pool.map(lambda url: estimate_site(url, limits), read_sites(args.sites)):
            failed |= "error" in line
            print(json.dumps(line), flush=True)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
