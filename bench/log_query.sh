#!/usr/bin/env bash
# servicebay-cli log over a plant's logs: a gigabyte of log lines (by default)
# in eight station files, made up in a temporary folder like the lines a
# station writes (start and end of each attempt, a few with a recipe's
# fields, a few failures), then the wall and processor time of --summary and
# of --serial of one module. The goal is 10 s for a gigabyte.
#
# Usage: bench/log_query.sh [build-dir] [megabytes]
set -euo pipefail
build=${1:-build}
megabytes=${2:-1024}
cli="$build/bin/servicebay-cli"
[ -x "$cli" ] || { echo "no $cli: build first" >&2; exit 1; }

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

python3 - "$work" "$megabytes" <<'MAKE'
import json, sys
folder, megabytes = sys.argv[1], int(sys.argv[2])
stations, per_station = 8, megabytes * 1024 * 1024 // 8
results = ["programmed"] * 97 + ["not downloaded", "hung", "no boot"]
for s in range(stations):
    lines, size, n = [], 0, 0
    with open(f"{folder}/station{s}.log", "w") as out:
        while size < per_station:
            n += 1
            day = 1 + n * 28 // (per_station // 650 + 1)
            line = {"time": f"2026-11-{day:02d}T08:{n // 60 % 60:02d}:{n % 60:02d}.123Z", "port": f"/dev/ttyACM{n % 64}",
                    "usb_serial": f"S{s}{n:07d}", "attempt": 1, "SN": f"SN{s}{n:07d}", "PName": "Sniffer",
                    "PVer": "2.12.0", "firmware_file": "/srv/line/firmware/fw-2.12.0.cod", "firmware_size": 1048576,
                    "firmware_sha256": "9f2c" * 16 if n % 3 else "41d0" * 16, "result": results[n % 100],
                    "detail": "" if n % 100 < 97 else "Download was completed with Errors", "report": "Flash OK\r\n",
                    "xmodem_result": 1049600, "bytes_programmed": 1049600, "bytes_acknowledged": 1049600,
                    "seconds": 4.321, "record_number": n, "program": "servicebay-cli 0.1.0",
                    "run_id": f"run{s}", "host": f"station{s}", "station": f"line {s}"}
            if n % 2:
                line.update({"step": None if n % 100 < 97 else "download", "recipe": "/srv/line/eu.sbrecipe",
                             "recipe_sha256": "a1b2" * 16, "configuration_sha256": "c3d4" * 16})
            start = dict(line, result="started", detail="", report="", bytes_acknowledged=None)
            text = json.dumps(start, separators=(",", ":")) + "\n" + json.dumps(line, separators=(",", ":")) + "\n"
            lines.append(text)
            size += len(text)
            if len(lines) == 10000:
                out.write("".join(lines)); lines = []
        out.write("".join(lines))
MAKE
total=$(cat "$work"/station*.log | wc -c)

measure() {  # label, then the command
  local label=$1; shift
  local t0 t1
  sync; t0=$(date +%s%N)
  TIMEFORMAT="%3U %3S"
  { time "$@" >"$work/out" 2>"$work/err"; } 2>"$work/time"
  t1=$(date +%s%N)
  read -r user sys <"$work/time"
  awk -v l="$label" -v w=$(( (t1 - t0) / 1000000 )) -v u="$user" -v s="$sys" -v b="$total" \
    'BEGIN { printf "%-10s %6.2f s wall, %6.2f s processor, %5.0f MB/s (goal: 1 GB in 10 s)\n", l, w / 1000, u + s, b / 1e6 / (w / 1000) }'
}
echo "logs: $(ls "$work"/station*.log | wc -l) files, $((total / 1024 / 1024)) MiB, $(cat "$work"/station*.log | wc -l) lines"
measure "--summary" "$cli" log "$work"/station*.log --summary
head -n 4 "$work/out"
measure "--serial" "$cli" log "$work"/station*.log --serial S30000042
cat "$work/out"
