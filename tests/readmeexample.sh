#!/usr/bin/env bash
# Runs the README's example as a host does. With a calibration at the device's path it must give the same words as the
# tool; without one it must fail with a message. Usage: readmeexample.sh EXAMPLE TOOL
set -euo pipefail
example=$1
tool=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$tool" simulate --output "$folder" --frames 1
export ZERUN_HOST_ROOT=$folder
if "$example" "$folder/frame_000.words.raw" "$folder/none.raw" 2>"$folder/message"; then
  echo "the example succeeded without a calibration" >&2
  exit 1
fi
grep -q "calibration" "$folder/message"
mkdir -p "$folder/vendor/lib64/camera"
cp "$folder/calibration.bin" "$folder/vendor/lib64/camera/new_otp_simple.bin"
"$example" "$folder/frame_000.words.raw" "$folder/example.raw"
"$tool" align --calibration "$folder/calibration.bin" --output "$folder" "$folder/frame_000.words.raw"
cmp "$folder/example.raw" "$folder/frame_000.words.aligned.raw"
