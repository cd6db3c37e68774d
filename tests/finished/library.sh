#!/usr/bin/env bash
# The finished file as the linker of a device, its loader and its packager see it. Usage: library.sh LIBRARY FOLDER...
# FOLDERs are those of this machine, which the file must not name.
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
# Fields of the segments of a type: 1 type, 2 offset, 3 address, 4 physical address, 5 file size, 6 memory size, 7 flags.
segment() { awk -v type="$1" -v field="$2" '$1 == type { sub(/R E/, "RE"); print $field }' <<<"$segments"; }

expect "exported symbols" "T itof_deinit
T itof_execute_algo
T itof_init" "$(nm -D --defined-only --format=posix "$library" | awk '{print $2, $1}' | LC_ALL=C sort)"
expect "soname" "[com.vantra.itof.so]" "$(awk '/SONAME/ {print $NF}' <<<"$dynamic")"

# The C and C++ runtimes are there under other names on a device than on a host.
expect "needed libraries beside the runtimes" "liblog.so
libopencv_core.so
liborvolog.so
libzeruncommonutils.so" "$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" | sed 's/\(opencv_core\.so\)\.[0-9.]*$/\1/' |
  grep -vE '^(lib(c|m|dl|gcc_s|stdc\+\+|c\+\+_shared)|ld-linux-[a-z0-9-]+)\.so(\.[0-9]+)?$' | LC_ALL=C sort)"
grep -qE '\((RPATH|RUNPATH)\)' <<<"$dynamic" && fail "has a run path"
grep -qE 'TEXTREL' <<<"$dynamic" && fail "has text relocations"
grep -qE '\(FLAGS_1\).*\bNOW\b' <<<"$dynamic" || fail "binds its symbols when they are called, not at load"

page=0x4000
loads=$(segment LOAD 8)
[ -n "$loads" ] || fail "has no segments to load"
for align in $loads; do ((align % page == 0)) || fail "has a segment for pages smaller than 16 KB"; done
relro=$(segment GNU_RELRO 3)
[ -n "$relro" ] || fail "leaves its relocated data writable"
(((relro + $(segment GNU_RELRO 6)) % page == 0)) || fail "has data that turns read-only up to the middle of a page"
expect "flags of the stack" "RW" "$(segment GNU_STACK 7)"

for folder in "$@"; do
  grep -qaF "$folder" "$library" && fail "names $folder"
done
expect "file names of a build machine" "" \
  "$(LC_ALL=C grep -aoE '/(bin|etc|home|lib|mnt|opt|root|srv|tmp|usr|var|work)/[[:print:]]*' "$library" || true)"
