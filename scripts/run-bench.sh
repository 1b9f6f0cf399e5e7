#!/usr/bin/env bash
# Runs every benchmark of a Release build and prints their BENCH lines.
set -euo pipefail
BUILD_DIR=$(cd "${1:?usage: run-bench.sh BUILD_DIR}" && pwd)
SANDBOX=$(mktemp -d /tmp/brix-bench.XXXXXX)
trap 'rm -rf "$SANDBOX"' EXIT
export HOME="$SANDBOX" XDG_CONFIG_HOME="$SANDBOX/.config" XDG_DATA_HOME="$SANDBOX/.local/share"
export XDG_RUNTIME_DIR="$SANDBOX/runtime" QT_QPA_PLATFORM=offscreen BRIX_BENCH_DIR="$SANDBOX"
mkdir -m 0700 -p "$XDG_RUNTIME_DIR"
status=0
for b in "$BUILD_DIR"/bench/bench_*; do
  [ -f "$b" ] && [ -x "$b" ] || continue
  "$b" || { echo "benchmark $(basename "$b") failed" >&2; status=1; }
done
exit $status
