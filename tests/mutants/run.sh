#!/usr/bin/env bash
# Runs the one-line faults of the core against the core's unit tests (the
# build without Qt) and tells which of them no test catches.
#   tests/mutants/run.sh            every list in this folder
#   tests/mutants/run.sh link.txt   one list (ids may follow)
# Needs ../shared/tools/mutate.py beside the project, as the developers' tools are.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
top=$(cd "$here/../.." && pwd)
mutate="$top/../shared/tools/mutate.py"
cd "$top"
if [ $# -gt 0 ]; then
  list=$1; shift
  exec python3 "$mutate" "$here/$list" "$@" --scratch "${MUTANT_SCRATCH:-/tmp/sb-mutants-${list%.txt}}"
fi
status=0
for list in "$here"/*.txt; do
  name=$(basename "$list" .txt)
  echo "== $name"
  python3 "$mutate" "$list" --scratch "${MUTANT_SCRATCH:-/tmp/sb-mutants}-$name" || status=1
done
exit $status
