#!/usr/bin/env bash
# Checks the finished file as a device's linker, loader and packager see it: symbols, needed libraries, segments, names.
# Usage: library.sh LIBRARY FOLDER..., where FOLDERs are folders of this machine that the file must not name
set -euo pipefail
library=$1
shift

fail() {
  printf '%s: %s\n' "$library" "$1" >&2
  exit 1
}
expect() {
  [ "$2" = "$3" ] || fail "$1: expected
$2
but found
$3"
}
dynamic=$(readelf -dW "$library")
segments=$(readelf -lW "$library")
# Prints one field of each segment of a type: 1 type, 2 offset, 3 address, 4 physical address, 5 file size, 6 memory size, 7 flags.
segment() { awk -v type="$1" -v field="$2" '$1 == type { sub(/R E/, "RE"); print $field }' <<<"$segments"; }

expect "exported symbols" "T itof_deinit
T itof_execute_algo
T itof_init" "$(nm -D --defined-only --format=posix "$library" | awk '{print $2, $1}' | LC_ALL=C sort)"
expect "soname" "[com.vantra.itof.so]" "$(awk '/SONAME/ {print $NF}' <<<"$dynamic")"

# The C and C++ runtimes have other names on a device than on a host.
expect "needed libraries without the runtimes" "liblog.so
libopencv_core.so
liborvolog.so
libzeruncommonutils.so" "$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" | sed 's/\(opencv_core\.so\)\.[0-9.]*$/\1/' |
  grep -vE '^(lib(c|m|dl|gcc_s|stdc\+\+|c\+\+_shared)|ld-linux-[a-z0-9-]+)\.so(\.[0-9]+)?$' | LC_ALL=C sort)"
grep -qE '\((RPATH|RUNPATH)\)' <<<"$dynamic" && fail "has a run path"
grep -qE 'TEXTREL' <<<"$dynamic" && fail "has text relocations"
grep -qE '\(FLAGS_1\).*\bNOW\b' <<<"$dynamic" || fail "binds symbols at the first call instead of at load time"

page=0x4000
loads=$(segment LOAD 8)
[ -n "$loads" ] || fail "has no LOAD segments"
for align in $loads; do ((align % page == 0)) || fail "has a segment that is not aligned to pages of 16 KB"; done
relro=$(segment GNU_RELRO 3)
[ -n "$relro" ] || fail "leaves relocated data writable"
(((relro + $(segment GNU_RELRO 6)) % page == 0)) || fail "has read-only relocated data that ends in the middle of a page"
expect "flags of the stack" "RW" "$(segment GNU_STACK 7)"

for folder in "$@"; do
  grep -qaF "$folder" "$library" && fail "names $folder"
done
expect "no file names of the build machine" "" \
  "$(LC_ALL=C grep -aoE '/(bin|etc|home|lib|mnt|opt|root|srv|tmp|usr|var|work)/[[:print:]]*' "$library" || true)"
