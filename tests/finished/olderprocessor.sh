#!/usr/bin/env bash
# On a processor without the instructions of the vector build, emulated: the library picks the baseline, nothing asks for
# an instruction that is not there, and the words are the same. Usage: olderprocessor.sh TOOL KERNELTEST
set -euo pipefail
tool=$1 kerneltest=$2

if ! command -v qemu-x86_64 >/dev/null; then
  echo "skipped: there is no qemu-x86_64 here (package qemu-user)"
  exit 77
fi
older() { qemu-x86_64 -cpu Nehalem "$@"; }
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

older "$kerneltest"
older "$tool" --version | grep 'x86-64 baseline'
older "$tool" selftest
"$tool" simulate --output "$folder" --frames 1
align=(align --calibration "$folder/calibration.bin" "$folder/frame_000.words.raw" --output)
"$tool" "${align[@]}" "$folder/here"
older "$tool" "${align[@]}" "$folder/older"
cmp "$folder/here/frame_000.words.aligned.raw" "$folder/older/frame_000.words.aligned.raw"
