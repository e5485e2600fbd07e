#!/usr/bin/env bash
# How cheap the page-count estimate is: on the default sample site, the
# requests it makes over the site's true page count and its wall time beside
# a full crawl of the same site by wget; then the estimate over the true count
# for every profile of the site. With --real-site, as root, also the estimate
# over the true count (bench/real-sites.tsv, a full crawl) of the WordPress
# blog that bench/real-site.sh installs and fills. Everything runs on 127.0.0.1.
#
#   bench/estimate.sh [--pages N] [--seed N] [--real-site]   (defaults: the site's own)
set -euo pipefail
cd "$(dirname "$0")/.."

site_args=()
real_site=0
while [ $# -gt 0 ]; do
  case $1 in
    --real-site) real_site=1; shift ;;
    --pages | --seed)
      [ $# -ge 2 ] || { echo "bench/estimate.sh: $1 needs a value" >&2; exit 2; }
      site_args+=("$1" "$2")
      shift 2
      ;;
    *) echo "usage: bench/estimate.sh [--pages N] [--seed N] [--real-site]" >&2; exit 2 ;;
  esac
done

build=${ORV_BUILD_DIR:-build}
log=$(mktemp)
if ! ./scripts/build "$build" >"$log" 2>&1; then
  cat "$log" >&2
  rm -f "$log"
  echo "bench/estimate.sh: build failed" >&2
  exit 1
fi
rm -f "$log"
command -v wget >/dev/null || { echo "bench/estimate.sh: wget is missing (scripts/setup installs it)" >&2; exit 1; }

tool=$build/bin/orvwebpage
SITE_BIN=$build/bin/orvwebpage-sample-site
. scripts/lib/sample-site.sh
work=$(mktemp -d)
trap 'site_stop; rm -rf "$work"' EXIT
trap 'exit 130' INT TERM

now() { date +%s.%N; }
log_lines() { wc -l <"$work/requests.log" 2>/dev/null || echo 0; }
# Bounds every run, so a fault shows as a failure instead of a hang.
limit=3600

# --- the default site: our estimate, then a full crawl -----------------------
site_start "$work" --log "$work/requests.log" "${site_args[@]}"
if [ "$SITE_PAGES" -lt 10000 ]; then
  echo "note: the site has $SITE_PAGES pages, fewer than the 10,000 this benchmark is meant for" >&2
fi

start=$(now)
result=$("$tool" estimate --json --deadline "$limit" "$SITE_URL")
ours_seconds=$(awk -v a="$start" -v b="$(now)" 'BEGIN { printf "%.3f", b - a }')
ours_served=$(log_lines)
estimate=$(json_number estimate "$result")
ours_requests=$(json_number requests "$result")

: >"$work/requests.log"
start=$(now)
# wget exits 8 when some page answered with an error status (the listings
# that end in 404 do); any other failure is one.
wget_status=0
timeout "$limit" wget --spider -r -l inf -e robots=off --no-verbose --no-directories \
  -P "$work/wget" -o "$work/wget.log" "$SITE_URL" || wget_status=$?
wget_seconds=$(awk -v a="$start" -v b="$(now)" 'BEGIN { printf "%.3f", b - a }')
wget_served=$(log_lines)
if [ "$wget_status" -ne 0 ] && [ "$wget_status" -ne 8 ]; then
  echo "bench/estimate.sh: wget failed with status $wget_status; see its log:" >&2
  tail -n 5 "$work/wget.log" >&2
  exit 1
fi
true_pages=$SITE_PAGES
default_url=$SITE_URL
site_stop

# --- every profile ---------------------------------------------------------
profiles=$("$SITE_BIN" --help | sed -n '/^Profiles:/,/^$/p' | awk 'NF && !/^Profiles:/ { print $1 }')
profile_rows=""
for profile in $profiles; do
  site_start "$work" --profile "$profile" "${site_args[@]}"
  r=$("$tool" estimate --json --deadline "$limit" "$SITE_URL") || r='{"estimate":0,"requests":0}'
  profile_rows+="$profile $SITE_PAGES $(json_number estimate "$r") $(json_number requests "$r")"$'\n'
  site_stop
done

# --- a real web application: its true count is what a full crawl read --------
if [ "$real_site" = 1 ]; then
  real_url=$(bench/real-site.sh start wp-plain | awk '{ print $2 }')
  r=$("$tool" estimate --json --deadline "$limit" "$real_url") || r='{"estimate":0,"requests":0}'
  real_pages=$(awk -F'\t' '$1 == "wp-plain" { print $3 }' bench/real-sites.tsv)
  profile_rows+="wordpress ${real_pages:-0} $(json_number estimate "$r") $(json_number requests "$r")"$'\n'
fi

# --- the table ---------------------------------------------------------------
awk -v url="$default_url" -v pages="$true_pages" -v est="$estimate" \
    -v oreq="$ours_requests" -v oserved="$ours_served" -v osec="$ours_seconds" \
    -v wserved="$wget_served" -v wsec="$wget_seconds" -v rows="$profile_rows" '
function verdict(ok) { return ok ? "met" : "MISSED" }
BEGIN {
  printf "default sample site %s: %d pages (true count)\n\n", url, pages
  printf "%-34s %14s %14s   %s\n", "", "estimate", "wget crawl", "goal"
  printf "%-34s %14d %14d\n", "requests (site log)", oserved, wserved
  printf "%-34s %14d %14s\n", "requests (counted by the tool)", oreq, "-"
  share = 100 * oserved / pages
  printf "%-34s %13.3f%% %13.1f%%   <= 1%%: %s\n", "requests / true pages", share,
         100 * wserved / pages, verdict(share <= 1)
  printf "%-34s %14.3f %14.3f\n", "wall time (s)", osec, wsec
  ratio = (osec > 0 ? wsec / osec : 0)
  printf "%-34s %14s %14s   <= 1/50: %s\n", "time, ours : wget", "1", sprintf("%.0f", ratio),
         verdict(ratio >= 50)
  printf "%-34s %14d %14s\n", "estimate (pages)", est, "-"
  printf "%-34s %13.1f%% %14s\n\n", "estimate / true pages", 100 * est / pages, "-"

  printf "%-10s %12s %10s %16s %10s\n", "profile", "true pages", "estimate", "estimate / true", "requests"
  n = split(rows, line, "\n")
  for (i = 1; i <= n; i++) {
    if (split(line[i], f, " ") < 4) continue
    printf "%-10s %12d %10d %15.1f%% %10d\n", f[1], f[2], f[3], (f[2] > 0 ? 100 * f[3] / f[2] : 0), f[4]
  }
}'
