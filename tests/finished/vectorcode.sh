#!/usr/bin/env bash
# Checks the vector build of the kernels in the finished file: each kernel uses its vector instruction and calls no
# function of another build except the rare exact cell, and no other code uses wide vectors. Usage: vectorcode.sh LIBRARY
set -euo pipefail

objdump --disassemble --demangle --no-show-raw-insn "$1" | awk '
  BEGIN {
    work["AlignmentFarPlane"] = work["DistortLUT"] = "vdivpd"
    work["AlignFrame"] = "vdivps"
    work["FillTargets"] = "vcvttps2dq"
  }
  function fail(why) { print why ": " $0; failed = 1; exit }
  /^[0-9a-f]+ <.*>:$/ {
    kernel = ""
    if (/RunKernelAvx2Fma</) for (name in work) if (index($0, name "(")) kernel = name
    next
  }
  kernel == "" && /%ymm/ { fail("outside the kernels") }
  kernel != "" && /call.*itof::/ && !/itof::IdealCell/ { fail(kernel " calls") }
  # The last pixels of a frame may not fill a vector. The maps are computed in whole blocks.
  kernel != "" && work[kernel] == "vdivpd" && /divsd / { fail(kernel " divides one by one") }
  kernel != "" && /%ymm/ && index($0, work[kernel] " ") { found[kernel] = 1 }
  END {
    for (name in work) if (!failed && !found[name]) { print name ": no " work[name] " on vectors"; failed = 1 }
    exit failed
  }'
