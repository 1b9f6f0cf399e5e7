#!/usr/bin/env bash
# Runs the test suite against a build folder with a throwaway HOME, XDG folders and
# session bus, so that no test touches a real user's settings.
set -euo pipefail
BUILD_DIR=$(cd "${1:?usage: run-tests.sh BUILD_DIR}" && pwd)
ROOT=$(cd "$(dirname "$0")/.." && pwd)
SANDBOX=$(mktemp -d /tmp/brix-test.XXXXXX)
trap 'rm -rf "$SANDBOX"' EXIT
export HOME="$SANDBOX/home"
export XDG_CONFIG_HOME="$HOME/.config" XDG_DATA_HOME="$HOME/.local/share"
export XDG_CACHE_HOME="$HOME/.cache" XDG_STATE_HOME="$HOME/.local/state"
export XDG_RUNTIME_DIR="$SANDBOX/runtime"
mkdir -p "$HOME" "$XDG_CONFIG_HOME" "$XDG_DATA_HOME" "$XDG_CACHE_HOME" "$XDG_STATE_HOME"
mkdir -m 0700 -p "$XDG_RUNTIME_DIR"
# Temporary files of the tests, also of children a test kills, go with the sandbox.
export TMPDIR="$SANDBOX/tmp"
mkdir -p "$TMPDIR"
export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0:strict_string_checks=0"
export LSAN_OPTIONS="suppressions=$ROOT/tests/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
cd "$BUILD_DIR"
# A private session bus for the automation tests; the suite also runs without one.
exec dbus-run-session -- ctest --output-on-failure -j "$(nproc)" "${@:2}"
