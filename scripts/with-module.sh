#!/usr/bin/env bash
# Runs a command beside a virtual module (servicebay-module) in its boot
# loader, answering from data/SampleModule.profile; the module stops when the
# command ends, whatever its road. The programs find the module in their port
# lists through SERVICEBAY_REGISTRY, which points at a folder of its own so
# that no other virtual module shows up; scripts find it at the path in
# SERVICEBAY_MODULE_PORT.
#
# Usage: scripts/with-module.sh BIN_DIR COMMAND [ARGUMENTS...]
set -euo pipefail
bin=$1
shift
top=$(cd "$(dirname "$0")/.." && pwd)

work=$(mktemp -d)
module=
stop_module() {
  if [ -n "$module" ]; then
    kill "$module" 2>/dev/null || true
    wait "$module" 2>/dev/null || true
  fi
  rm -rf "$work"
}
trap stop_module EXIT
trap 'exit 130' INT TERM

export SERVICEBAY_REGISTRY="$work/registry"
export SERVICEBAY_MODULE_PORT="$work/module"
mkdir -p "$SERVICEBAY_REGISTRY"
"$bin/servicebay-module" --profile "$top/data/SampleModule.profile" --boot --quiet \
  --link "$SERVICEBAY_MODULE_PORT" >"$work/device" &
module=$!

# The module names its device on standard output once it is ready.
for _ in $(seq 100); do
  [ -s "$work/device" ] && break
  kill -0 "$module" 2>/dev/null || { echo "servicebay-module did not start" >&2; exit 1; }
  sleep 0.1
done
[ -s "$work/device" ] || { echo "servicebay-module did not become ready" >&2; exit 1; }

"$@"
