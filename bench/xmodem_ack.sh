#!/usr/bin/env bash
# The XMODEM-1K sender against a receiver that answers each block at once
# (servicebay-bench-xmodem-ack on a pseudo-terminal's master), so that the
# sender alone sets the pace: our sender on the Qt serial port
# (servicebay-bench-xmodem-send), lrzsz's sx -k, and the plainest loop of
# write-a-block, read-its-ACK, into the same receiver, 4 MiB each, alternating.
# The receiver times each transfer from the first byte of the first block to
# its ACK of the EOT; the medians in microseconds per block are compared.
#
# Usage: bench/xmodem_ack.sh [build-dir] [runs]
set -euo pipefail
build=${1:-build}
runs=${2:-5}
ack="$build/bin/servicebay-bench-xmodem-ack"
ours="$build/bin/servicebay-bench-xmodem-send"
for program in "$ack" "$ours"; do
  [ -x "$program" ] || { echo "no $program: build first (SB_BENCH=ON)" >&2; exit 1; }
done
command -v sx >/dev/null || { echo "sx is missing (scripts/setup.sh installs lrzsz)" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
size=$((4 * 1024 * 1024))
head -c "$size" /dev/urandom >"$work/firmware.cod"

# One transfer: the sender given as a command, in which DEVICE stands for the
# receiver's device; prints the receiver's microseconds per block.
transfer() {
  : >"$work/receiver.out"
  timeout 300 "$ack" receive "$work/firmware.cod" >"$work/receiver.out" 2>"$work/receiver.log" &
  local receiver=$!
  local device=""
  for _ in $(seq 100); do
    device=$(head -n 1 "$work/receiver.out")
    [ -n "$device" ] && break
    sleep 0.05
  done
  [ -n "$device" ] || { echo "the receiver did not start: $(cat "$work/receiver.log")" >&2; exit 1; }
  local command=("${@//DEVICE/$device}")
  timeout 300 "${command[@]}" </dev/null >"$work/sender.out" 2>"$work/sender.log" || true
  wait "$receiver" || { echo "transfer failed: $(cat "$work/receiver.log" "$work/sender.out" "$work/sender.log")" >&2; exit 1; }
  tail -n 1 "$work/receiver.out" | awk '{ print $3 }'
}

declare -a t_ours t_sx t_plain
for _ in $(seq "$runs"); do
  t_ours+=("$(transfer "$ours" DEVICE "$work/firmware.cod")")
  t_sx+=("$(transfer sh -c "exec sx -k '$work/firmware.cod' <DEVICE >DEVICE")")
  t_plain+=("$(transfer "$ack" plain DEVICE "$work/firmware.cod")")
done

median() { printf '%s\n' "$@" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
# On a machine that others share, the best run shows the sender's own cost.
best() { printf '%s\n' "$@" | sort -g | head -n 1; }
m_ours=$(median "${t_ours[@]}")
m_sx=$(median "${t_sx[@]}")
printf 'runs:                 %d each, 4 MiB into a receiver that ACKs each block at once\n' "$runs"
printf '                      median us/block   best   (all runs)\n'
printf 'servicebay sender:    %8.2f  %8.2f   (%s)\n' "$m_ours" "$(best "${t_ours[@]}")" "${t_ours[*]}"
printf 'lrzsz sx -k:          %8.2f  %8.2f   (%s)\n' "$m_sx" "$(best "${t_sx[@]}")" "${t_sx[*]}"
printf 'write/read-ACK loop:  %8.2f  %8.2f   (%s)\n' "$(median "${t_plain[@]}")" "$(best "${t_plain[@]}")" "${t_plain[*]}"
awk -v o="$m_ours" -v t="$m_sx" -v bo="$(best "${t_ours[@]}")" -v bt="$(best "${t_sx[@]}")" \
  'BEGIN { printf "ratio ours / sx -k:   %8.3f  %8.3f   (target: at most 1.0)\n", o / t, bo / bt }'
