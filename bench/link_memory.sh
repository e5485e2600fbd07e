#!/usr/bin/env bash
# Peak memory per link as a user sees it: the whole process's maximum resident
# size (/usr/bin/time) over a loopback page of 1,000,000 links, each with a
# parameter name of its own, for `estimate --max-requests 1`, `links --html`
# and `nodes`; beside link classification's own bytes per link
# (build/bench/url_classify, BM_GrowthRatio) and the ratio to it. Then the
# peak of `links --html` and `nodes` on a file of DIV_MB megabytes of nothing
# but "<div>", as a multiple of the file's size.
#
#   bench/link_memory.sh [LINKS] [DIV_MB]   (defaults 1000000 and 200, 0 skips
#   the file; ORV_BUILD_DIR picks the build)
set -euo pipefail
cd "$(dirname "$0")/.."
links=${1:-1000000}
div_mb=${2:-200}
build=${ORV_BUILD_DIR:-build}
tool=$build/bin/orvwebpage
[ -x "$tool" ] || { echo "bench/link_memory.sh: $tool is missing; build first" >&2; exit 1; }
work=$(mktemp -d)
server=
trap '[ -n "$server" ] && kill "$server" 2>/dev/null; rm -rf "$work"' EXIT

/usr/bin/python3 - "$work/page.html" "$links" <<'PY'
import sys
with open(sys.argv[1], "w") as f:
    f.write("<html><body>\n")
    for i in range(int(sys.argv[2])):
        f.write(f'<a href="/?k{i}=1">{i % 10}</a>\n')
    f.write("</body></html>\n")
PY
# A static server on a port the system picks; it prints the port first.
/usr/bin/python3 - "$work" >"$work/port" 2>/dev/null <<'PY' &
import functools, http.server, sys
handler = functools.partial(http.server.SimpleHTTPRequestHandler, directory=sys.argv[1])
server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
print(server.server_address[1], flush=True)
server.serve_forever()
PY
server=$!
for _ in $(seq 100); do [ -s "$work/port" ] && break; sleep 0.1; done
url="http://127.0.0.1:$(head -1 "$work/port")/page.html"

peak_kb() { /usr/bin/time -f %M "$@" 2>&1 >/dev/null | tail -1; }
per_link() { awk -v kb="$1" -v n="$links" 'BEGIN { printf "%.0f", kb * 1024 / n }'; }

classify=$("$build/bench/url_classify" --benchmark_filter=GrowthRatio 2>/dev/null |
  grep -o 'bytes_per_link_1M=[0-9.]*[kM]*' | cut -d= -f2 || true)
case $classify in
  *k) classify=$(awk -v v="${classify%k}" 'BEGIN { print v * 1000 }') ;;
esac

printf '%-32s %12s %14s %10s\n' "run ($links links)" "peak MB" "bytes/link" "/ classify"
lift=
"$tool" estimate --help 2>/dev/null | grep -q -- --max-memory && lift=" --deadline 0 --max-memory 0"
# robots.txt would spend the one request the page needs.
for run in "estimate --ignore-robots --max-requests 1$lift" "links --html" "nodes"; do
  # shellcheck disable=SC2086
  kb=$(peak_kb "$tool" $run "$url" || true)
  [[ $kb =~ ^[0-9]+$ ]] || { echo "$run: failed" >&2; continue; }
  bytes=$(per_link "$kb")
  ratio=$(awk -v b="$bytes" -v c="${classify:-0}" 'BEGIN { if (c > 0) printf "%.1f", b / c; else print "-" }')
  label=${run/--ignore-robots /}
  printf '%-32s %12.0f %14s %10s\n' "${label%% --deadline*}" "$((kb / 1024))" "$bytes" "$ratio"
done
printf '%-32s %12s %14s\n' "link classification (bench)" "" "${classify:-?}"

[ "$div_mb" -gt 0 ] || exit 0
/usr/bin/python3 - "$work/divs.html" "$div_mb" <<'PY'
import sys
with open(sys.argv[1], "w") as f:
    for _ in range(int(sys.argv[2]) * 200):
        f.write("<div>" * 1000)
PY
echo
printf '%-32s %12s %14s\n' "run ($div_mb MB of <div>)" "peak MB" "x file size"
for run in "links --html" "nodes"; do
  # shellcheck disable=SC2086
  kb=$(peak_kb "$tool" $run "$work/divs.html" || true)
  [[ $kb =~ ^[0-9]+$ ]] || { echo "$run: failed" >&2; continue; }
  ratio=$(awk -v kb="$kb" -v mb="$div_mb" 'BEGIN { printf "%.1f", kb * 1024 / (mb * 1000000) }')
  printf '%-32s %12.0f %14s\n' "$run" "$((kb / 1024))" "$ratio"
done
