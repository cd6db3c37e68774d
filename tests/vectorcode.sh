#!/usr/bin/env bash
# The vector build of the kernels in the finished file: that the compiler made vector code of all three, and that no
# other code has such instructions. Usage: vectorcode.sh LIBRARY
set -euo pipefail

objdump --disassemble --demangle --no-show-raw-insn "$1" | awk '
  BEGIN { count = split("AlignmentFarPlane DistortLUT AlignFrame", steps, " ") }
  /^[0-9a-f]+ <.*>:$/ {
    step = ""
    if (/RunKernelAvx2Fma</) for (i = 1; i <= count; i++) if (index($0, steps[i] "(")) step = steps[i]
  }
  /%ymm/ && step == "" { print "outside the kernels: " $0; failed = 1; exit }
  /vdivp[sd].*%ymm/ { divisions[step]++ }
  END {
    for (i = 1; i <= count && !failed; i++) {
      if (!divisions[steps[i]]) { print steps[i] ": no division of vectors, so its loop is not vector code"; failed = 1 }
    }
    exit failed
  }'
