#!/usr/bin/env bash
# The vendor tree's description of the library says what CMake does. Usage: androidbp.sh BLUEPRINT SOURCES FLAGS LINKFLAGS
# LIBRARIES, the last four as lists with "|" between their entries.
set -euo pipefail
blueprint=$1

# The entries of a list in the blueprint, one a line.
entries() {
  awk -v name="$1:" '$1 == name { inside = 1 } inside { print } inside && /\]/ { exit }' "$blueprint" |
    grep -o '"[^"]*"' | tr -d '"'
}
# Compares one with what CMake has, on standard input.
compare() {
  diff <(LC_ALL=C sort) <(entries "$1" | LC_ALL=C sort) >&2 && return
  printf '%s, %s: < is what CMake has\n' "$blueprint" "$1" >&2
  exit 1
}

tr '|' '\n' <<<"$2" | compare srcs
# Exceptions are on in CMake without a flag. The map of this machine's folders is nothing to a vendor tree, which also may
# make errors of warnings, and of those in other modules' headers: it gets those flags only that such headers stand.
tr '|' '\n' <<<"-fexceptions|$3" | grep -vE '^-(ffile-prefix-map=|W(pedantic|shadow|.*conversion|double-promotion|format))' |
  compare cflags
grep -qx '    rtti: true,' "$blueprint"
# The version script has a property of its own, and the libraries are modules.
script=$(tr '|' '\n' <<<"$4" | sed -n 's/.*--version-script=.*\///p')
grep -qxF "    version_script: \"$script\"," "$blueprint"
tr '|' '\n' <<<"$4" | grep -v -- '--version-script=' | compare ldflags
tr '|' '\n' <<<"$5" | grep -vx itof_core | sed 's/^-l//; s/^/lib/' | compare shared_libs
