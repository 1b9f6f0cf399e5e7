#!/usr/bin/env bash
# Fails when a subsystem below the shell includes a shell header or the start-up module,
# or when a source file outgrows 800 lines.
set -uo pipefail
ROOT=$(cd "$(dirname "$0")/.." && pwd)
cd "$ROOT/src"
status=0
bad=$(grep -nE '#include "(shell/|app/modMain\.h)' \
    documents editing language settings recovery support -r --include='*.cpp' --include='*.h')
if [ -n "$bad" ]; then
    echo "Includes that point up into the shell:"
    echo "$bad"
    status=1
fi
long=$(find . -name '*.cpp' -o -name '*.h' | xargs wc -l | awk '$2 != "total" && $1 > 800')
if [ -n "$long" ]; then
    echo "Files over 800 lines:"
    echo "$long"
    status=1
fi
exit $status
