#!/usr/bin/env bash
# Builds the preset for devices as an integrator does, with a stand-in for the NDK (androidndk/). Then checks the library
# file and runs the self-test in an emulator. Usage: androidpreset.sh SOURCE
set -euo pipefail
source=$1

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp -r "$source"/{CMakeLists.txt,CMakePresets.json,cmake,platform,scripts,system,tools,tests} "$folder"
cp -r "$source/tests/finished/androidndk" "$folder/ndk"
cp -r "$source/build/libc++-arm64" "$folder/ndk/sysroot"
export ANDROID_NDK_HOME=$folder/ndk OpenCV_DIR=$folder/cmake/debian CLI11_DIR=$folder/cli11/share/cmake/CLI11
mkdir -p "$folder"/cli11/{include,share/cmake}
cp -r /usr/include/CLI "$folder/cli11/include"
cp -r /usr/share/cmake/CLI11 "$folder/cli11/share/cmake"
cd "$folder"
CI=true ITOF_BUILD_BENCH=OFF scripts/build android-arm64
cmake --install build/android-arm64 --strip --prefix "$folder/device"

tests/finished/library.sh device/lib/com.vantra.itof.so "$folder" "$source"
needed=$(readelf -dW device/bin/itof | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -vE '^(lib(c|m|dl)|ld-linux-.*)\.so\.[0-9]+$' || true)
if [ -n "$needed" ]; then
  echo "itof needs more than the C library: $needed" >&2
  exit 1
fi
qemu-aarch64 device/bin/itof selftest
