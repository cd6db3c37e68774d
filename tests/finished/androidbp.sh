#!/usr/bin/env bash
# Compares the vendor tree's build file with what CMake does. Usage: androidbp.sh BLUEPRINT SOURCES FLAGS LINKFLAGS
# LIBRARIES, the last four as lists with "|" between their entries.
set -euo pipefail
blueprint=$1

# Prints the entries of a list in the blueprint, one per line.
entries() {
  awk -v name="$1:" '$1 == name { inside = 1 } inside { print } inside && /\]/ { exit }' "$blueprint" |
    grep -o '"[^"]*"' | tr -d '"'
}
# Compares such a list with the entries on standard input.
compare() {
  diff <(LC_ALL=C sort) <(entries "$1" | LC_ALL=C sort) >&2 && return
  printf '%s, %s: "<" marks what CMake has\n' "$blueprint" "$1" >&2
  exit 1
}

tr '|' '\n' <<<"$2" | compare srcs
# In CMake, exceptions need no flag. A vendor tree does not need the map of this machine's folders. It may turn warnings
# into errors, also those in headers of other modules, so it gets only the warning flags that such headers pass.
tr '|' '\n' <<<"-fexceptions|$3" | grep -vE '^-(ffile-prefix-map=|W(pedantic|shadow|.*conversion|double-promotion|format))' |
  compare cflags
grep -qx '    rtti: true,' "$blueprint"
# The version script has its own property, and libraries are modules.
script=$(tr '|' '\n' <<<"$4" | sed -n 's/.*--version-script=.*\///p')
grep -qxF "    version_script: \"$script\"," "$blueprint"
tr '|' '\n' <<<"$4" | grep -v -- '--version-script=' | compare ldflags
tr '|' '\n' <<<"$5" | grep -vx itof_core | sed 's/^-l//; s/^/lib/' | compare shared_libs
