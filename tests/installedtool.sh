#!/usr/bin/env bash
# Installs the tool into a folder with a blank in its name and uses what was installed: the program, the line that
# `simulate` prints to be typed next, and the completion in bash. Usage: installedtool.sh CMAKE BUILD_DIR
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
fail() {
  echo "$*" >&2
  exit 1
}

"$1" --install "$2" --component tool --prefix "$folder/in stalled" >/dev/null
mkdir "$folder/user's own"
cd "$folder/user's own"
"../in stalled/bin/itof" simulate --output "a scene" --frames 1 | tail -n 1 >line
sh -e ./line
[ -s "a scene/aligned/frame_000.words.preview.png" ] || fail "the printed line wrote no preview: $(<line)"

PATH="$folder/in stalled/bin:$PATH"
itof --man | cmp - "$folder/in stalled/share/man/man1/itof.1"
source "$folder/in stalled/share/bash-completion/completions/itof"
[ "$(complete -p itof)" = "complete -o default -F _itof itof" ] || fail "file names are not completed"
# Each row: the typed words, the last one unfinished, then "=" and all candidates.
while IFS== read -r typed expected; do
  read -ra COMP_WORDS <<<"${typed//+/=}"
  [[ $typed != *' ' ]] || COMP_WORDS+=("")
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1)) COMPREPLY=()
  _itof "${COMP_WORDS[0]}" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
  [ "${COMPREPLY[*]}" = "$expected" ] || fail "$typed completes to \"${COMPREPLY[*]}\", not to \"$expected\""
done <<'ROWS'
itof =align simulate calibration explain selftest
itof s=simulate selftest
itof calibration ex=export
itof calibration import --aux-=--aux-size --aux-window
itof simulate -=-h --help -o --output --frames --seed
itof calibration import in.yml --unit =um mm cm m in
itof calibration import --format r=raw-json ros
itof calibration import --quaternion-order + =xyzw wxyz
itof align --kind words --log --r=--ratio --report
itof align --output align --ki=--kind
itof calibration show =
itof align --calibration =
itof simulate --seed =
itof zebra =align simulate calibration explain selftest
ROWS
