#!/usr/bin/env bash
# The two figures of the device link, measured with servicebay-cli info over
# a pseudo-terminal (socat plays the module):
#  1. a module that answers at once: the wall time of the whole command, from
#     its start to its end (so an upper bound of "opening to last answer",
#     the 500 ms wait behind the opening included); best, median and worst
#     of several runs. Each of the eleven exchanges lasts one 10 ms poll of
#     the terminal, in which the whole answer comes; the limit only catches a
#     read that needs more polls than that.
#  2. a silent module (eleven "No answer", about 22 s): the processor time
#     of the command against its wall time; waiting must cost no processor.
#
# Usage: bench/link_read.sh [build-dir] [runs]
set -euo pipefail
build=${1:-build}
runs=${2:-7}
cli="$build/bin/servicebay-cli"
[ -x "$cli" ] || { echo "no $cli: build first" >&2; exit 1; }
command -v socat >/dev/null || { echo "socat is missing (scripts/setup.sh installs it)" >&2; exit 1; }

work=$(mktemp -d)
peer=""
cleanup() {
  [ -n "$peer" ] && kill "$peer" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

# A module in boot mode: echo, LF, answer, prompt for every command line.
cat >"$work/answer.sh" <<'MODULE'
#!/usr/bin/env bash
while IFS= read -r -d $'\r' line; do
  case "$line" in
    GETAPPINFO) answer=$'Sample firmware\r\nbuilt for the bench' ;;
    GETINFOFILE) answer='<?xml version="1.0"?><Options/>' ;;
    *) answer="answer to $line" ;;
  esac
  printf '%s\r\n%s\r\n> ' "$line" "$answer"
done
MODULE
chmod +x "$work/answer.sh"

# One socat a run: it ends when the command closes the port.
start_peer() {  # $1: socat's address of the program behind the pseudo-terminal
  rm -f "$work/port"
  socat PTY,link="$work/port",rawer "$1" &
  peer=$!
  for _ in $(seq 100); do [ -e "$work/port" ] && return 0; sleep 0.02; done
  echo "socat did not come up" >&2; exit 1
}
stop_peer() { kill "$peer" 2>/dev/null || true; wait "$peer" 2>/dev/null || true; peer=""; }

echo "== read of a module that answers at once ($runs runs)"
times=()
for _ in $(seq "$runs"); do
  start_peer EXEC:"$work/answer.sh"
  t0=$(date +%s%N)
  "$cli" info --port "$work/port" >"$work/out" 2>"$work/err" || { cat "$work/err" >&2; exit 1; }
  t1=$(date +%s%N)
  stop_peer
  grep -q '^AppInfo: Sample firmware' "$work/out" || { echo "unexpected answer:" >&2; cat "$work/out" >&2; exit 1; }
  times+=($(( (t1 - t0) / 1000000 )))
done
sorted=($(printf '%s\n' "${times[@]}" | sort -n))
echo "wall time ms: best ${sorted[0]}, median ${sorted[$((runs / 2))]}, worst ${sorted[$((runs - 1))]} (limit 1500)"

echo "== read of a silent module"
start_peer SYSTEM:"cat >/dev/null"
/usr/bin/time -f "%e %U %S" -o "$work/time" "$cli" info --port "$work/port" >"$work/out" 2>"$work/err" || true
stop_peer
[ "$(grep -c ': No answer$' "$work/out")" -eq 11 ] || { echo "expected eleven \"No answer\":" >&2; cat "$work/out" >&2; exit 1; }
read -r wall user sys < <(tail -n 1 "$work/time")
awk -v w="$wall" -v u="$user" -v s="$sys" \
  'BEGIN { printf "wall %.1f s, processor %.2f s (user %.2f, system %.2f): %.2f %% of one core (limit 2 %%)\n", w, u + s, u, s, 100 * (u + s) / w }'
