#!/usr/bin/env bash
# How far to trust the page counts on real software: runs `orvwebpage size`
# (when the tool has it) and `orvwebpage estimate` on every site that
# bench/real-site.sh serves and sets each beside the site's true count from
# bench/real-sites.tsv, with the requests each spent (as the tool counts them
# and as the site's server logged them). Ends with the goal lines. Prints a
# Markdown table, ready for the README.
#
#   bench/trust.sh [--tool PATH] [--sites TSV] [--max-requests N] [SITE...]
#
# The sites must be up (as root: bench/real-site.sh start); their true counts
# come from bench/real-site.sh count (or the --sites table of the same
# columns). Everything runs on 127.0.0.1.
set -euo pipefail
cd "$(dirname "$0")/.."

tool=${ORV_BUILD_DIR:-build}/bin/orvwebpage
tsv=bench/real-sites.tsv
max_requests=""
chosen=()
while [ $# -gt 0 ]; do
  case $1 in
    --tool | --sites | --max-requests)
      [ $# -ge 2 ] || { echo "bench/trust.sh: $1 needs a value" >&2; exit 2; }
      case $1 in --tool) tool=$2 ;; --sites) tsv=$2 ;; *) max_requests=$2 ;; esac
      shift 2
      ;;
    -*) echo "usage: bench/trust.sh [--tool PATH] [--sites TSV] [--max-requests N] [SITE...]" >&2; exit 2 ;;
    *) chosen+=("$1"); shift ;;
  esac
done

logs=/var/tmp/orvwebpage-real-site/logs
[ -s "$tsv" ] || { echo "bench/trust.sh: no $tsv; run bench/real-site.sh count as root" >&2; exit 1; }
if [ ! -x "$tool" ]; then
  echo "bench/trust.sh: building $tool" >&2
  build=$(dirname "$(dirname "$tool")")
  [ -f "$build/build.ninja" ] ||
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DORV_BUILD_BENCH=OFF >/dev/null
  cmake --build "$build" --target orvwebpage_cli >/dev/null
fi
has_size=0
"$tool" --help 2>/dev/null | grep -q "^  size  " && has_size=1

limits=(--deadline 600)
[ -n "$max_requests" ] && limits+=(--max-requests "$max_requests")

# Lines the site's server logged while one command ran: what it really cost.
logged() { [ -r "$logs/$1.log" ] && wc -l <"$logs/$1.log" || echo 0; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
while IFS=$'\t' read -r name url pages _; do
  case $name in '#'* | '') continue ;; esac
  if [ ${#chosen[@]} -gt 0 ] && ! printf '%s\n' "${chosen[@]}" | grep -qx -- "$name"; then
    continue
  fi
  if ! wget -q -t 1 -O /dev/null "$url"; then
    echo "bench/trust.sh: $name ($url) does not answer; start the sites: bench/real-site.sh start" >&2
    exit 1
  fi
  echo "bench/trust.sh: $name" >&2
  before=$(logged "$name")
  "$tool" estimate --json "${limits[@]}" "$url" >"$work/$name.estimate" 2>"$work/$name.estimate.err" || true
  estimate_logged=$(($(logged "$name") - before))
  size_logged=0
  if [ "$has_size" = 1 ]; then
    before=$(logged "$name")
    "$tool" size --json "${limits[@]}" "$url" >"$work/$name.size" 2>"$work/$name.size.err" || true
    size_logged=$(($(logged "$name") - before))
  fi
  printf '%s\t%s\t%s\t%s\t%s\n' "$name" "$pages" "$estimate_logged" "$size_logged" "$has_size" >>"$work/rows"
done <"$tsv"
[ -s "$work/rows" ] || { echo "bench/trust.sh: no site measured" >&2; exit 1; }

/usr/bin/python3 - "$work" <<'PY'
import json, statistics, sys

work = sys.argv[1]


def load(path):
    try:
        with open(path) as f:
            return json.loads(f.read() or "{}")
    except (OSError, ValueError):
        return {}


def number(d, *keys):
    for k in keys:
        v = d.get(k)
        if isinstance(v, (int, float)) and not isinstance(v, bool):
            return v
    return None


rows = []
for line in open(work + "/rows"):
    name, pages, est_logged, size_logged, has_size = line.rstrip("\n").split("\t")
    e = load("%s/%s.estimate" % (work, name))
    s = load("%s/%s.size" % (work, name)) if has_size == "1" else None
    row = {"name": name, "true": int(pages), "est": number(e, "estimate"),
           "est_req": number(e, "requests"), "est_logged": int(est_logged),
           "est_error": e.get("error"), "has_size": s is not None}
    if s is not None:
        rng = s.get("range") if isinstance(s.get("range"), list) and len(s["range"]) == 2 else [None, None]
        low, high = number(s, "low"), number(s, "high")
        row.update(size=number(s, "size", "pages"), low=rng[0] if low is None else low,
                   high=rng[-1] if high is None else high, source=s.get("source") or "-",
                   size_req=number(s, "requests"), size_logged=int(size_logged),
                   size_error=s.get("error"), partial=s.get("reason") if s.get("partial") else None)
    rows.append(row)


def show(v):
    return "-" if v is None else str(v)


def ratio(v, t):
    return "-" if v is None or not t else "%.2f" % (v / t)


has_size = any(r["has_size"] for r in rows)
head = ["site", "true pages"]
if has_size:
    head += ["size", "range", "source", "requests", "size/true"]
head += ["estimate", "requests", "estimate/true"]
print("| " + " | ".join(head) + " |")
print("|" + "|".join(["---"] + ["---:"] * (len(head) - 1)) + "|")
for r in rows:
    cells = [r["name"], str(r["true"])]
    if has_size:
        rng = "-" if r.get("low") is None else "%s-%s" % (r["low"], r["high"])
        note = " (%s)" % r["partial"] if r.get("partial") else ""
        if r.get("size_error"):
            note = " (error: %s)" % r["size_error"]
        cells += [show(r.get("size")) + note, rng, str(r.get("source", "-")),
                  "%s (%d logged)" % (show(r.get("size_req")), r.get("size_logged", 0)),
                  ratio(r.get("size"), r["true"])]
    note = " (error: %s)" % r["est_error"] if r["est_error"] else ""
    cells += [show(r["est"]) + note, "%s (%d logged)" % (show(r["est_req"]), r["est_logged"]),
              ratio(r["est"], r["true"])]
    print("| " + " | ".join(cells) + " |")


def goals(label, key, req_key, logged_key, ranged):
    measured = [r for r in rows if r.get(key) is not None]
    n = len(rows)
    within = sum(1 for r in measured if r["true"] and 0.5 <= r[key] / r["true"] <= 2)
    errors = [abs(r[key] / r["true"] - 1) for r in measured if r["true"]]
    errors += [1.0] * (n - len(measured))  # no figure: as far off as a figure of 0
    median = statistics.median(errors) if errors else 0
    most = max([max(r.get(req_key) or 0, r.get(logged_key) or 0) for r in rows] or [0])
    print("\n%s: within 2x of the true count on %d of %d (goal: 9 in 10); median error %.0f%% "
          "(goal: within 25%%); at most %d requests on a site (goal: 60)"
          % (label, within, n, 100 * median, most), end="")
    if ranged:
        holds = sum(1 for r in measured if r.get("low") is not None and r.get("high") is not None
                    and r["low"] <= r["true"] <= r["high"])
        print("; range holds the true count on %d of %d (goal: 8 in 10)" % (holds, n), end="")
    print()


if has_size:
    goals("size", "size", "size_req", "size_logged", True)
goals("estimate", "est", "est_req", "est_logged", False)
if not has_size:
    print("(this orvwebpage has no size command: estimate only)")
PY
