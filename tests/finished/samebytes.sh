#!/usr/bin/env bash
# The same sources in a folder of another name give the same file, byte for byte. Usage: samebytes.sh LIBRARY SOURCE PRESET
set -euo pipefail
library=$1 source=$2 preset=$3

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
copy="$folder/another folder of a longer name"
mkdir "$copy"
cp -r "$source"/{CMakeLists.txt,CMakePresets.json,cmake,platform,system} "$copy"
cd "$copy"
if ! { cmake --preset "$preset" -DITOF_BUILD_TOOLS=OFF -DITOF_BUILD_TESTS=OFF &&
  cmake --build --preset "$preset" --target itof; } >"$folder/log" 2>&1; then
  cat "$folder/log"
  exit 1
fi
cmp "$library" "build/$preset/${library#"$source/build/$preset/"}"
