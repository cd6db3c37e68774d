#!/usr/bin/env bash
# The vector build of the kernels in the finished file: the divisions are those of vectors, in all three, nothing but
# the rare exact cell is left to a function of another build, and no other code has such instructions.
# Usage: vectorcode.sh LIBRARY
set -euo pipefail

objdump --disassemble --demangle --no-show-raw-insn "$1" | awk '
  BEGIN { count = split("AlignmentFarPlane DistortLUT AlignFrame", steps, " ") }
  function fail(why) { print why ": " $0; failed = 1; exit }
  /^[0-9a-f]+ <.*>:$/ {
    step = ""
    if (/RunKernelAvx2Fma</) for (i = 1; i <= count; i++) if (index($0, steps[i] "(")) step = steps[i]
    next
  }
  step == "" && /%ymm/ { fail("outside the kernels") }
  step != "" && /call.*itof::/ && !/itof::IdealCell/ { fail(step " calls") }
  # The last pixels of a frame that fill no vector are divided one by one; the maps are made of whole blocks.
  step != "" && step != "AlignFrame" && /divs[sd] / { fail(step " divides one by one") }
  /vdivp[sd].*%ymm/ { divisions[step]++ }
  END {
    for (i = 1; i <= count && !failed; i++) {
      if (!divisions[steps[i]]) { print steps[i] ": no division of vectors"; failed = 1 }
    }
    exit failed
  }'
