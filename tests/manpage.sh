#!/usr/bin/env bash
# Formats the manual page, which must give no warning and contain every line of every command's help. Usage: manpage.sh TOOL
set -euo pipefail
tool=$1
if ! command -v groff >/dev/null; then
  echo "skipped: groff is not installed"
  exit 77
fi
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$tool" --man >"$folder/itof.1"
groff -man -Tascii -P-cbou -ww "$folder/itof.1" >"$folder/page" 2>"$folder/warnings"
if [ -s "$folder/warnings" ]; then
  cat "$folder/warnings" >&2
  exit 1
fi
page=$(tr -d '[:space:]' <"$folder/page")
# Lines of the page are broken elsewhere, so blanks do not count.
for command in align simulate explain selftest calibration\ {show,diff,check,import,export}; do
  "$tool" $command --help | grep -vE '^(Positionals:|Options:|)$' | sed 's/^Usage: //' >"$folder/help"
  [ "$(wc -l <"$folder/help")" -ge 3 ]
  while read -r line; do
    if [[ $page != *"$(tr -d '[:space:]' <<<"$line")"* ]]; then
      echo "the page lacks a line of itof $command --help: $line" >&2
      exit 1
    fi
  done <"$folder/help"
done
