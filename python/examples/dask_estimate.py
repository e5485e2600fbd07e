#!/usr/bin/env python3
"""Estimates the page counts of many sites at once on Dask.

Each estimate has HTTP limits and counters of its own (its budget, deadline,
delay, robots.txt and connections), so a worker may run several at once, one a
thread, without their limits or counts mixing.

    python3 dask_estimate.py SITES [--scheduler ADDRESS] [--workers N]
                             [--threads N] [--max-requests N] [--deadline SECONDS]
                             [--delay SECONDS] [--ignore-robots]

SITES is a file of entry URLs, one a line (blank lines and # comments skipped).
Without --scheduler a local cluster of worker processes is started. Writes one
JSON line per site, in file order: {"url", "estimate", "requests", "seconds"}.
"""

import argparse
import json
import sys
from typing import Any

from dask.distributed import Client, LocalCluster


def estimate_site(url: str, limits: dict[str, Any]) -> dict[str, Any]:
    import orvwebpage  # in the worker process
    result = orvwebpage.estimate(url, **limits)
    return {"url": url, "estimate": result.estimate, "requests": result.requests,
            "seconds": round(result.seconds, 3)}


def read_sites(path: str) -> list[str]:
    with open(path, encoding="utf-8") as lines:
        return [s for s in (line.strip() for line in lines) if s and not s.startswith("#")]


def print_estimates(client: Any, sites: list[str], limits: dict[str, Any]) -> None:
    # The limits are each call's own, so workers with several threads run
    # that many estimates side by side, each within its own limits.
    futures = client.map(estimate_site, sites, limits=limits, pure=False)
    for future in futures:
        print(json.dumps(future.result()), flush=True)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("sites", help="file of entry URLs, one a line")
    parser.add_argument("--scheduler", help="address of a running Dask scheduler")
    parser.add_argument("--workers", type=int, default=None,
                        help="local worker processes (default: one per site, at most 4)")
    parser.add_argument("--threads", type=int, default=4,
                        help="estimates at once in each local worker (default 4)")
    parser.add_argument("--ignore-robots", action="store_true",
                        help="do not read robots.txt, nor keep to what it refuses")
    parser.add_argument("--max-requests", type=int)
    parser.add_argument("--deadline", type=float, help="seconds for each site")
    parser.add_argument("--delay", type=float, help="seconds between two requests to a site")
    args = parser.parse_args()
    sites = read_sites(args.sites)
    limits = {k: v for k, v in (("max_requests", args.max_requests), ("deadline", args.deadline),
                                ("delay", args.delay)) if v is not None}
    limits["obey_robots"] = not args.ignore_robots
    if args.scheduler:
        with Client(args.scheduler) as client:
            print_estimates(client, sites, limits)
    else:
        workers = args.workers or max(1, min(4, len(sites)))
        with LocalCluster(n_workers=workers, threads_per_worker=args.threads, processes=True,
                          host="127.0.0.1", dashboard_address=None) as cluster, \
                Client(cluster) as client:
            print_estimates(client, sites, limits)
    return 0


if __name__ == "__main__":
    sys.exit(main())
