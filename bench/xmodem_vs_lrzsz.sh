#!/usr/bin/env bash
# Whether the download is limited by the link and not by the sender: the same
# 4 MiB file goes over a pseudo-terminal pair (socat) to lrzsz's rx in CRC mode,
# once sent by our XMODEM-1K sender (servicebay-bench-xmodem-send, the sender
# alone on the Qt serial port) and once by lrzsz's own sx -k. Each is timed as
# the wall time of rx, from its start to its end; the sender is started first
# and waits for rx's "C". Several runs each, alternating; the median counts.
#
# Both times hold the second that rx waits behind the EOT for a further byte
# before it acknowledges the EOT; the blocks themselves take the rest.
#
# rx talks to its end of the pair through a socket that socat joins to it, not
# on the terminal itself: rx flushes its terminal as it exits, and on a
# pseudo-terminal that flush can throw away its ACK of the EOT before the
# sender has read it.
#
# Usage: bench/xmodem_vs_lrzsz.sh [build-dir] [runs]
set -euo pipefail
build=${1:-build}
runs=${2:-5}
sender="$build/bin/servicebay-bench-xmodem-send"
[ -x "$sender" ] || { echo "no $sender: build first (SB_BENCH=ON)" >&2; exit 1; }
for tool in socat rx sx timeout; do
  command -v "$tool" >/dev/null || { echo "$tool is missing (scripts/setup.sh installs socat and lrzsz)" >&2; exit 1; }
done

work=$(mktemp -d)
relay=""
cleanup() {
  [ -n "$relay" ] && kill "$relay" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

size=$((4 * 1024 * 1024))
limit=300  # seconds; a transfer that takes longer has hung
head -c "$size" /dev/urandom >"$work/firmware.cod"
socat pty,raw,echo=0,link="$work/ours" pty,raw,echo=0,link="$work/theirs" 2>"$work/socat.log" &
relay=$!
for _ in $(seq 50); do [ -e "$work/ours" ] && [ -e "$work/theirs" ] && break; sleep 0.1; done

now() { date +%s.%N; }

# One transfer: the sender given as a command on the sender's end, rx on the
# other; prints rx's wall time in seconds and checks what rx received.
transfer() {
  rm -f "$work/received"
  timeout "$limit" "$@" </dev/null >"$work/sender.out" 2>"$work/sender.log" &
  local sending=$!
  # Time for the sender to open its port and empty its input before the "C".
  sleep 0.3
  local start end
  start=$(now)
  (cd "$work" && timeout "$limit" socat -t 0.05 FILE:"$work/theirs",raw,echo=0 EXEC:"rx -b -c received" 2>"$work/rx.log")
  end=$(now)
  wait "$sending" || { echo "sender failed: $(cat "$work/sender.out" "$work/sender.log" "$work/rx.log")" >&2; exit 1; }
  # rx keeps whole blocks: the file, then the sender's padding.
  [ "$(stat -c %s "$work/received" 2>/dev/null || echo 0)" -ge "$size" ] &&
    cmp -s -n "$size" "$work/received" "$work/firmware.cod" || { echo "rx received another file: $(cat "$work/rx.log")" >&2; exit 1; }
  awk -v s="$start" -v e="$end" 'BEGIN { printf "%.3f\n", e - s }'
}

ours=() theirs=() own=()
for _ in $(seq "$runs"); do
  ours+=("$(transfer "$sender" "$work/ours" "$work/firmware.cod")")
  # Our sender's own clock, from the handshake to the ACK of the EOT: rx's
  # start and the relay's end are not in it.
  own+=("$(awk '{ print $2 }' "$work/sender.out")")
  theirs+=("$(transfer sh -c "exec sx -k '$work/firmware.cod' <'$work/ours' >'$work/ours'")")
done

median() { printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
m_ours=$(median "${ours[@]}")
m_theirs=$(median "${theirs[@]}")
printf 'runs:                        %d each, 4 MiB, rx -c over a socat pty pair\n' "$runs"
printf 'servicebay sender (median):  %.3f s   (%s)\n' "$m_ours" "$(printf '%.3f ' "${ours[@]}")"
printf '  of it handshake to end:     %.3f s   (the sender'"'"'s own clock)\n' "$(median "${own[@]}")"
printf 'lrzsz sx -k (median):        %.3f s   (%s)\n' "$m_theirs" "$(printf '%.3f ' "${theirs[@]}")"
awk -v o="$m_ours" -v t="$m_theirs" 'BEGIN { printf "ratio ours / sx:             %.3f   (target: at most 1.0)\n", o / t }'
