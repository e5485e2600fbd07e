# Starting and stopping the sample site from a script. Source it, then:
#   site_start DIR [site options...]   serves on a free loopback port; sets
#                                      SITE_URL, SITE_PAGES and SITE_PID
#   site_stop                          stops it (safe to call twice)
# The caller's EXIT trap should call site_stop so no server outlives it.

SITE_BIN=${SITE_BIN:-build/bin/orvwebpage-sample-site}
SITE_PID=""
SITE_URL=""
SITE_PAGES=""

site_start() {
  local dir=$1
  shift
  local out="$dir/site.$$.$RANDOM.out"
  # Made here, not by the background job's redirection, so it exists at once.
  : >"$out"
  "$SITE_BIN" --port 0 "$@" >"$out" 2>"$out.err" &
  SITE_PID=$!
  # The first line, "URL truecount", comes once the port is bound. Wait for a
  # whole line, at most ten seconds.
  local first="" i
  for i in $(seq 200); do
    if [ "$(wc -l <"$out" 2>/dev/null || echo 0)" -ge 1 ]; then
      first=$(head -n 1 "$out")
      break
    fi
    if ! kill -0 "$SITE_PID" 2>/dev/null; then
      break
    fi
    sleep 0.05
  done
  if [ -z "$first" ]; then
    echo "sample site did not start: $(head -c 300 "$out.err")" >&2
    site_stop
    return 1
  fi
  read -r SITE_URL SITE_PAGES <<<"$first"
}

site_stop() {
  if [ -n "$SITE_PID" ]; then
    kill "$SITE_PID" 2>/dev/null || true
    local i
    for i in $(seq 50); do
      kill -0 "$SITE_PID" 2>/dev/null || break
      sleep 0.1
    done
    kill -9 "$SITE_PID" 2>/dev/null || true
    wait "$SITE_PID" 2>/dev/null || true
    SITE_PID=""
  fi
}

# The value of a number field of a flat JSON object: json_number FIELD TEXT
json_number() {
  sed -n "s/.*\"$1\":\([-0-9.eE+]*\).*/\1/p" <<<"$2"
}
