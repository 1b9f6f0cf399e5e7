#!/usr/bin/env bash
# A private ScarletDME (open-source QM) host for the tests and the demo. Nothing is
# installed system-wide: the build goes into a folder of the build tree, and each host
# runs in its own IPC and pid namespaces, so that hosts never share QM's fixed shared-memory
# keys and the whole host (qmlnxd included) dies with its namespace.
#
#   scarletdme.sh build DIR             build once into DIR (later calls cost nothing)
#   scarletdme.sh host DIR HOST         make a host in the new folder HOST, start it, print
#                                       "ready" and keep it until standard input closes
#   scarletdme.sh account HOST NAME FOLDER
#                                       create account NAME in FOLDER, with the file BP
#   scarletdme.sh leftovers [FOLDER]    fail if a host under FOLDER still runs, or if QM's
#                                       shared memory shows outside a namespace
#   scarletdme.sh demo BUILD BRIX       the demo behind "make run-qm"
#
# HOST/bin/qm runs qm inside the host's namespaces, in the current folder; give it the
# TCL command as arguments. Its environment needs no preparation.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
COMMIT=38cc96b0f455fba154cb18b914926c514d6bae31
SHORT=${COMMIT:0:7}
SHARED="$ROOT/../shared/hosts"
SHM_KEYS='0x716d01'

die() {
  echo "scarletdme.sh: $*" >&2
  exit 1
}

# unshare and nsenter as root, or with a user namespace that maps us to root.
userns() { [ "$(id -u)" -ne 0 ]; }

# Makes the source folder $1/src: the shared archive, or a clone of the same commit.
fetch_source() {
  local dir=$1
  rm -rf "$dir/src" "$dir/src.tmp"
  mkdir -p "$dir/src.tmp"
  if [ -f "$SHARED/scarletdme-$SHORT.tar.gz" ]; then
    tar xzf "$SHARED/scarletdme-$SHORT.tar.gz" -C "$dir/src.tmp" --strip-components=1
  else
    git clone -q https://github.com/geneb/ScarletDME.git "$dir/src.tmp"
    git -C "$dir/src.tmp" checkout -q "$COMMIT"
  fi
  if [ -f "$SHARED/scarletdme-gcc12.patch" ]; then
    patch -s -d "$dir/src.tmp" -p1 <"$SHARED/scarletdme-gcc12.patch"
  else
    # The same two changes: gcc 12 in C2x mode has no bool keyword yet, and takes no
    # prototype without a named parameter.
    local gcc12='defined(__GNUC__) \&\& !defined(__clang__) \&\& __GNUC__ < 13'
    sed -i "s/^#if __STDC_VERSION__ <= 201710L/\\0 || ($gcc12)/" \
      "$dir/src.tmp/gplsrc/qmdefs.h" "$dir/src.tmp/gplsrc/qmtic.c"
    sed -i 's/__GNUC__ > 11/__GNUC__ > 12/' "$dir/src.tmp/gplsrc/op_ccall.c"
  fi
  mv "$dir/src.tmp" "$dir/src"
}

build() {
  local dir=$1
  mkdir -p "$dir"
  dir=$(cd "$dir" && pwd)
  # Parallel tests may ask at once: one builds, the others wait and find it done.
  exec 9>"$dir/.lock"
  flock 9
  [ "$(cat "$dir/.built" 2>/dev/null)" = "$COMMIT" ] && return 0
  rm -f "$dir/.built"
  fetch_source "$dir"
  make -s -C "$dir/src" -j2 qm >"$dir/build.log" 2>&1 || {
    tail -20 "$dir/build.log" >&2
    die "the ScarletDME build failed; see $dir/build.log"
  }
  # The system folder every host copies: its terminfo compiled, the programs inside.
  rm -rf "$dir/qmsys"
  cp -a "$dir/src/qmsys" "$dir/qmsys"
  mkdir -p "$dir/qmsys/bin"
  cp "$dir/src/bin/"* "$dir/qmsys/bin/"
  (cd "$dir/qmsys" && "$dir/src/bin/qmtic" -pterminfo "$dir/src/terminfo.src" >/dev/null)
  echo "$COMMIT" >"$dir/.built"
}

# The wrapper that runs qm inside a host's namespaces.
write_wrapper() {
  local host=$1 enter="-i -p"
  userns && enter="-U --preserve-credentials -i -p"
  mkdir -p "$host/bin"
  cat >"$host/bin/qm" <<EOF
#!/bin/sh
# Runs qm of the host in $host inside its namespaces.
ns=\$(cat "$host/ns.pid" 2>/dev/null) || { echo "The QM host in $host is not running." >&2; exit 125; }
exec nsenter $enter -t "\$ns" env SCARLET_CONFIG="$host/scarlet.conf" "$host/qmsys/bin/qm" "\$@"
EOF
  chmod 755 "$host/bin/qm"
}

make_host() {
  local dir=$1 host=$2
  mkdir -p "$host"
  cp -a "$dir/qmsys" "$host/qmsys"
  printf '[qm]\nQMSYS=%s/qmsys\nGRPSIZE=2\nNUMUSERS=20\nSORTMEM=4096\nPIDFILE=%s/scarlet.pid\n' \
    "$host" "$host" >"$host/scarlet.conf"
  write_wrapper "$host"
}

# Runs inside the namespaces, as their first process: ending it ends every process there.
inside() {
  local host=$1
  export SCARLET_CONFIG="$host/scarlet.conf"
  "$host/qmsys/bin/qm" -start >"$host/start.log" 2>&1 || {
    cat "$host/start.log" >&2
    exit 1
  }
  : >"$host/started"
  # The owner keeps our input open while it needs the host.
  cat >/dev/null || true
  "$host/qmsys/bin/qm" -stop >/dev/null 2>&1 || true
}

host() {
  local dir host
  dir=$(cd "$1" && pwd)
  mkdir -p "$2"
  host=$(cd "$2" && pwd)
  [ -z "$(ls -A "$host")" ] || die "$host must be a new or empty folder"
  build "$dir"
  exec 9>&-
  make_host "$dir" "$host"
  local flags="-i -p -f --mount-proc --kill-child"
  userns && flags="-r $flags"
  exec 3<&0
  # shellcheck disable=SC2086
  unshare $flags "$0" inside "$host" <&3 &
  local owner=$!
  exec 3<&-
  local tries=0
  until [ -e "$host/started" ]; do
    if ! kill -0 "$owner" 2>/dev/null || [ $tries -ge 600 ]; then
      kill "$owner" 2>/dev/null || true
      wait "$owner" 2>/dev/null || true
      die "the QM host in $host did not start"
    fi
    sleep 0.05
    tries=$((tries + 1))
  done
  local ns
  ns=$(awk '{print $1}' "/proc/$owner/task/$owner/children" 2>/dev/null)
  [ -n "$ns" ] || die "can't find the QM host's namespace"
  echo "$ns" >"$host/ns.pid"
  echo ready
  wait "$owner" || true
  rm -f "$host/ns.pid"
  # The first process of the namespace is gone, and with it every other one.
  [ ! -e "/proc/$ns" ] || die "the QM host in $host is still running"
}

account() {
  local host=$1 name=$2 folder=$3
  mkdir -p "$(dirname "$folder")"
  folder=$(cd "$(dirname "$folder")" && pwd)/$(basename "$folder")
  (cd "$host/qmsys" && TERM=dumb "$host/bin/qm" -quiet "CREATE.ACCOUNT $name $folder NO.QUERY") \
    >/dev/null </dev/null
  [ -d "$folder" ] || die "the account $name was not created in $folder"
  (cd "$folder" && TERM=dumb "$host/bin/qm" -quiet "CREATE.FILE BP DIRECTORY") >/dev/null </dev/null
  [ -d "$folder/BP" ] || die "the file BP was not created in $folder"
}

leftovers() {
  local under=${1:-${TMPDIR:-/tmp}} bad=0 exe p
  for p in /proc/[0-9]*; do
    exe=$(readlink "$p/exe" 2>/dev/null) || continue
    case "$exe" in
    "$under"/*/qmsys/bin/qm*)
      echo "left behind: ${p#/proc/} $exe" >&2
      bad=1
      ;;
    esac
  done
  if ipcs -m -s 2>/dev/null | grep -q "$SHM_KEYS"; then
    echo "QM's shared memory or semaphores are outside a namespace:" >&2
    ipcs -m -s | grep "$SHM_KEYS" >&2
    bad=1
  fi
  return $bad
}

demo() {
  local build brix work
  build=$(cd "$1" && pwd)
  brix=$(cd "$(dirname "$2")" && pwd)/$(basename "$2")
  work="$build/qm-demo"
  rm -rf "$work/host" "$work/accounts"
  mkdir -p "$work/config/Tolvek/Brix"
  coproc HOSTPROC { "$0" host "$build/scarletdme" "$work/host"; }
  local line
  read -r line <&"${HOSTPROC[0]}" || true
  [ "$line" = ready ] || die "the demo host did not start"
  local account="$work/accounts/QMDEMO"
  account "$work/host" QMDEMO "$account"
  cp "$ROOT/examples/demo/BP/"* "$account/BP/"
  printf '%s\n' '* Compile this one to see the compiler'"'"'s errors in the results window.' \
    'PROGRAM BROKEN' 'X = 1 +' 'IF X THEN' '   CRT "one"' 'CRT "two"' 'GOTO NOWHERE' 'END' \
    >"$account/BP/BROKEN"
  cat >"$work/config/Tolvek/Brix/connections.conf" <<EOF
[General]
Default=qm-demo

[qm-demo]
Label=QM demo
Transport=local
AccountsFolder=$work/accounts
DefaultAccount=QMDEMO
Command=$work/host/bin/qm -quiet
AllowCommands=true
Marks=raw
ItemNames=qm
Locks=qm
EOF
  echo "QM demo host running; account QMDEMO in $account"
  local status=0
  XDG_CONFIG_HOME="$work/config" "$brix" || status=$?
  # Closing the host's input stops it.
  eval "exec ${HOSTPROC[1]}>&-"
  wait "$HOSTPROC_PID" || true
  return $status
}

case "${1:-}" in
build) build "${2:?build DIR}" ;;
host) host "${2:?host DIR HOST}" "${3:?host DIR HOST}" ;;
inside) inside "$2" ;;
account) account "${2:?account HOST NAME FOLDER}" "${3:?}" "${4:?}" ;;
leftovers) leftovers "${2:-}" ;;
demo) demo "${2:?demo BUILD BRIX}" "${3:?demo BUILD BRIX}" ;;
*) sed -n '2,17s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
esac
