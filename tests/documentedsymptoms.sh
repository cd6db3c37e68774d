#!/usr/bin/env bash
# Compares the table of symptoms in the documentation with the program's output.
# Usage: documentedsymptoms.sh PROGRAM DOCUMENT
set -euo pipefail
table=$(awk '/^\| Aligned pixels show/ { inside = 1 } inside && !/^\|/ { exit } inside && ++row > 2' "$2")
diff <("$1") - <<<"$table"
