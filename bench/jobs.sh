#!/usr/bin/env bash
# Many sites at once: 64 small sample sites, each answering every request
# 100 ms late as a far server would, estimated one at a time and then with
# --jobs 16, in one run. Prints both wall times and their ratio (the goal is
# at least 10), and fails when the two runs' estimates differ.
#
#   bench/jobs.sh [--sites N] [--jobs N] [--latency MS] [--profile NAME]
set -euo pipefail
cd "$(dirname "$0")/.."

sites=64 jobs=16 latency=100 profile=example
while [ $# -gt 0 ]; do
  case $1 in
    --sites | --jobs | --latency | --profile)
      [ $# -ge 2 ] || { echo "bench/jobs.sh: $1 needs a value" >&2; exit 2; }
      declare "${1#--}=$2"
      shift 2
      ;;
    *) echo "usage: bench/jobs.sh [--sites N] [--jobs N] [--latency MS] [--profile NAME]" >&2; exit 2 ;;
  esac
done

build=${ORV_BUILD_DIR:-build}
if [ ! -x "$build/bin/orvwebpage" ] || [ ! -x "$build/bin/orvwebpage-sample-site" ]; then
  log=$(mktemp)
  if ! ./scripts/build "$build" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    echo "bench/jobs.sh: build failed" >&2
    exit 1
  fi
  rm -f "$log"
fi

work=$(mktemp -d)
pids=()
stop_sites() {
  local pid
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  for pid in "${pids[@]}"; do wait "$pid" 2>/dev/null || true; done
  rm -rf "$work"
}
trap stop_sites EXIT
trap 'exit 130' INT TERM

for i in $(seq "$sites"); do
  "$build/bin/orvwebpage-sample-site" --port 0 --profile "$profile" --seed "$i" \
    --latency "$latency" >"$work/site$i.out" 2>/dev/null &
  pids+=($!)
done
: >"$work/urls"
for i in $(seq "$sites"); do
  for _ in $(seq 200); do
    [ -s "$work/site$i.out" ] && break
    sleep 0.05
  done
  [ -s "$work/site$i.out" ] || { echo "bench/jobs.sh: sample site $i did not start" >&2; exit 1; }
  head -n 1 "$work/site$i.out" | cut -d' ' -f1 >>"$work/urls"
done

now() { date +%s.%N; }
estimate() {  # jobs, output file
  "$build/bin/orvwebpage" estimate --json --deadline 300 --jobs "$1" --from "$work/urls" >"$2"
}
start=$(now)
estimate 1 "$work/one"
middle=$(now)
estimate "$jobs" "$work/many"
end=$(now)

fields() { sed -E 's/"seconds":[^,}]*//' "$1"; }
if ! diff <(fields "$work/one") <(fields "$work/many") >/dev/null; then
  echo "bench/jobs.sh: the estimates with --jobs $jobs differ from those one at a time" >&2
  diff <(fields "$work/one") <(fields "$work/many") | head -n 10 >&2
  exit 1
fi
requests=$(grep -o '"requests":[0-9]*' "$work/one" | cut -d: -f2 | paste -sd+ | bc)
awk -v a="$start" -v b="$middle" -v c="$end" -v n="$sites" -v j="$jobs" -v l="$latency" \
    -v r="$requests" 'BEGIN {
  one = b - a; many = c - b
  printf "sites: %d (%d requests in all, each answered %d ms late)\n", n, r, l
  printf "one at a time:  %.2f s\n", one
  printf "--jobs %-2d:      %.2f s\n", j, many
  printf "ratio:          %.1fx (goal: at least 10x), same estimates\n", one / many
}'
