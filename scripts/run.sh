#!/usr/bin/env bash
# The main command: builds the programs and opens the main window with a
# virtual module attached (the module stops when the window closes). Without
# a display it runs the same read through servicebay-cli instead.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target servicebay servicebay-cli servicebay-module
bin=$PWD/build/bin

if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  echo "A virtual module waits in its boot loader: press \"Read info\" and select it."
  echo "Closing the window ends the program and stops the module."
  exec scripts/with-module.sh "$bin" "$bin/servicebay"
fi

echo "No display (\$DISPLAY and \$WAYLAND_DISPLAY are empty): instead of the window, the same"
echo "read of a virtual module through servicebay-cli, and the option tree of its configuration."
read_and_decode() {
  local answers config
  answers=$("$bin/servicebay-cli" info --port "$SERVICEBAY_MODULE_PORT")
  printf '%s\n\n' "$answers"
  config=$(printf '%s\n' "$answers" | sed -n 's/^AppConfig: //p')
  "$bin/servicebay-cli" decode data/SampleCatalog.xml --image "$config"
}
export -f read_and_decode
export bin
exec scripts/with-module.sh "$bin" bash -c read_and_decode
