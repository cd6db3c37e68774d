#!/usr/bin/env bash
# The table of symptoms in the documentation is what the program prints. Usage: documentedsymptoms.sh PROGRAM DOCUMENT
set -euo pipefail
table=$(awk '/^\| Aligned pixels show/ { inside = 1 } inside && !/^\|/ { exit } inside && ++row > 2' "$2")
diff <("$1") - <<<"$table"
