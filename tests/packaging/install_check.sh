#!/usr/bin/env bash
# Installs a build into a temporary DESTDIR and checks what a desktop gets: the installed
# programs run and find their manual under the prefix, the desktop entry, MIME type, man
# pages and manual are valid.
set -euo pipefail
BUILD=${1:?usage: install_check.sh BUILD_DIR SOURCE_DIR}
SOURCE=${2:?usage: install_check.sh BUILD_DIR SOURCE_DIR}
DEST=$(mktemp -d)
trap 'rm -rf "$DEST"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

DESTDIR="$DEST" cmake --install "$BUILD" --prefix /opt/brix >/dev/null
ROOT="$DEST/opt/brix"
SHARE="$ROOT/share"

[ "$("$ROOT/bin/brix" --version)" = "brix $(sed -n 's/^project(Brix VERSION \([0-9.]*\).*/\1/p' "$SOURCE/CMakeLists.txt")" ] \
  || fail "installed brix --version"
"$ROOT/bin/brix" --help | grep -qF "$SHARE/doc/brix/manual/index.html" \
  || fail "brix --help doesn't name the installed manual"
"$ROOT/bin/brix-format" --help | grep -qF "$SHARE/doc/brix/manual/brix-format.html" \
  || fail "brix-format --help doesn't name its page"
[ -d "$SHARE/brix/examples/demo/BP" ] || fail "demo account not installed"

# A corpus program: what brix-format makes of it passes its own --check.
CORPUS="$SOURCE/../shared/corpus/scarletdme"
[ -d "$CORPUS" ] || CORPUS=/work/shared/corpus/scarletdme
PROGRAM=$(find "$CORPUS" -type f 2>/dev/null | sort | head -1)
[ -n "$PROGRAM" ] || PROGRAM="$SOURCE/examples/demo/BP/HELLO"
set +e
"$ROOT/bin/brix-format" --check "$PROGRAM" >/dev/null 2>&1
status=$?
set -e
[ $status -le 1 ] || fail "brix-format --check on $PROGRAM: status $status"
"$ROOT/bin/brix-format" "$PROGRAM" > "$DEST/formatted"
"$ROOT/bin/brix-format" --check "$DEST/formatted" || fail "formatted text doesn't pass --check"

desktop-file-validate --no-hints "$SHARE/applications/com.tolvek.Brix.desktop"
xmllint --noout "$SHARE/mime/packages/com.tolvek.Brix.xml"
# The MIME database takes the type with its globs and magic.
cp -r "$SHARE/mime" "$DEST/mime"
update-mime-database "$DEST/mime" >/dev/null 2>&1
grep -q "text/x-mvbasic:\*\.bp" "$DEST/mime/globs2" || fail "no glob for *.bp"
grep -q "text/x-mvbasic" "$DEST/mime/magic" || fail "no magic for text/x-mvbasic"
grep -q "^Exec=/opt/brix/bin/brix --automation$" "$SHARE/dbus-1/services/com.tolvek.Brix.service" \
  || fail "D-Bus activation file"
for size in 16 32 256; do
  [ -s "$SHARE/icons/hicolor/${size}x${size}/apps/com.tolvek.Brix.png" ] || fail "icon $size"
done

for page in brix brix-format brix-check; do
  warnings=$(zcat "$SHARE/man/man1/$page.1.gz" | LC_ALL=C.UTF-8 groff -man -ww -z 2>&1)
  [ -z "$warnings" ] || fail "man page $page: $warnings"
done

# Every link of the manual leads to a page or anchor of it.
python3 - "$SHARE/doc/brix/manual" <<'PY'
import glob, os, re, sys
os.chdir(sys.argv[1])
pages = {f: open(f).read() for f in glob.glob("*.html")}
assert "index.html" in pages, "no start page"
ids = {f: set(re.findall(r'id="([^"]+)"', t)) for f, t in pages.items()}
bad = [(f, h) for f, t in pages.items() for h in re.findall(r'(?:href|src)="([^":]+)"', t)
       if not os.path.exists(h.partition("#")[0] or f)
       or (h.partition("#")[2] and h.partition("#")[2] not in ids.get(h.partition("#")[0] or f, ()))]
sys.exit("broken links: %s" % bad if bad else 0)
PY
echo "installed and checked under $ROOT"
