#!/usr/bin/env bash
# Aligns a frame on an emulated processor without AVX2: the library must choose the baseline build, use no missing
# instruction in any step, and give the same words. Usage: olderprocessor.sh TOOL KERNELTEST
set -euo pipefail
tool=$1 kerneltest=$2

if ! command -v qemu-x86_64 >/dev/null; then
  echo "skipped: qemu-x86_64 is missing (package qemu-user)"
  exit 77
fi
older() { qemu-x86_64 -cpu Nehalem "$@"; }
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

older "$kerneltest"
older "$tool" --version | grep 'x86-64 baseline'
"$tool" simulate --output "$folder" --frames 1
align=(align --calibration "$folder/calibration.bin" "$folder/frame_000.words.raw" --output)
"$tool" "${align[@]}" "$folder/here"
older "$tool" "${align[@]}" "$folder/older"
cmp "$folder/here/frame_000.words.aligned.raw" "$folder/older/frame_000.words.aligned.raw"
