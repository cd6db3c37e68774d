#!/usr/bin/env bash
# Builds the release preset from a copy of the sources in a folder with another name, and compares the library file byte
# for byte. Usage: samebytes.sh BUILD PATH SOURCE, where PATH is the library's path in the build folder BUILD.
set -euo pipefail
build=$1 path=$2 source=$3

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
copy="$folder/another folder of a longer name"
mkdir "$copy"
cp -r "$source"/{CMakeLists.txt,CMakePresets.json,cmake,platform,system} "$copy"
cd "$copy"
if ! { cmake --preset release -DITOF_BUILD_TOOLS=OFF -DITOF_BUILD_TESTS=OFF &&
  cmake --build --preset release --target itof; } >"$folder/log" 2>&1; then
  cat "$folder/log"
  exit 1
fi
cmp "$build/$path" "build/release/$path"
