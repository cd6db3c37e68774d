#!/usr/bin/env bash
# The finished file's outside: its name, and three functions and nothing else. Usage: finishedlibrary.sh LIBRARY
set -euo pipefail
library=$1

expect() {
  [ "$2" = "$3" ] && return
  printf '%s: expected\n%s\nbut found\n%s\n' "$1" "$2" "$3" >&2
  exit 1
}

expect "exported symbols" "T itof_deinit
T itof_execute_algo
T itof_init" "$(nm -D --defined-only --format=posix "$library" | awk '{print $2, $1}' | LC_ALL=C sort)"
expect "soname" "[com.vantra.itof.so]" "$(readelf -d "$library" | awk '/SONAME/ {print $NF}')"
expect "platform libraries needed" "liblog.so
liborvolog.so
libzeruncommonutils.so" "$(readelf -d "$library" | sed -n 's/.*NEEDED.*\[\(lib\(log\|orvolog\|zerun.*\)\.so\)\]/\1/p' | LC_ALL=C sort)"
