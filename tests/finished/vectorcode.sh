#!/usr/bin/env bash
# The vector build of the kernels in the finished file: what each is made of works on vectors, nothing but the rare exact
# cell is left to a function of another build, and no other code has such instructions. Usage: vectorcode.sh LIBRARY
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
  # The last pixels of a frame may fill no vector; the maps are made of whole blocks.
  kernel != "" && work[kernel] == "vdivpd" && /divsd / { fail(kernel " divides one by one") }
  kernel != "" && /%ymm/ && index($0, work[kernel] " ") { found[kernel] = 1 }
  END {
    for (name in work) if (!failed && !found[name]) { print name ": no " work[name] " of vectors"; failed = 1 }
    exit failed
  }'
