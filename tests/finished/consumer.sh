#!/usr/bin/env bash
# Builds a small project that uses the library, first with the sources as a part of it, then with the installed package.
# The sources are a copy in a folder with another name; the library file must be the same byte for byte.
# Usage: consumer.sh BUILD LIBRARY SOURCE, where LIBRARY is the library file in the build folder BUILD
set -euo pipefail
build=$1 library=$2 source=$3

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export ZERUN_HOST_ROOT=$folder/without-calibration
copy="$folder/another folder of a longer name"
mkdir "$copy"
cp -r "$source"/{CMakeLists.txt,cmake,platform,system} "$copy"

# Builds and runs the project in a new folder. Usage: consume NAME [cmake argument...]
consume() {
  if ! { cmake -G Ninja -S "$source/tests/finished/consumer" -B "$folder/$1" -DCMAKE_BUILD_TYPE=Release "${@:2}" &&
    cmake --build "$folder/$1"; } >"$folder/log" 2>&1; then
    cat "$folder/log"
    exit 1
  fi
  "$folder/$1/consumer"
}
consume part -DITOF_SOURCE="$copy"
cmp "$library" "$(find "$folder/part" -name "${library##*/}")"

cmake --install "$build" --prefix "$folder/installed" >"$folder/log"
consume package -DCMAKE_PREFIX_PATH="$folder/installed"
