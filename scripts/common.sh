# shellcheck shell=bash
# Functions that the other scripts share. They source it first: it goes to the repository's root and answers --help with
# the first comment of the script.

script=$(realpath "$0")
caller=$PWD
cd "$(dirname "$script")/.."
name=scripts/${script##*/}

# Ends with one line on standard error. Usage: fail MESSAGE [EXITCODE]
fail() {
  printf '%s: %s\n' "$name" "$1" >&2
  exit "${2:-1}"
}
usage() { fail "${1:+$1; }usage: $(sed -n 's/^# Usage: //p' "$script")" 2; }

if [[ ${1:-} == --help || ${1:-} == -h ]]; then
  sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$script"
  exit
fi

# Makes ITOF_REALDATA absolute, which may name a folder relative to the caller's.
resolve_realdata() {
  [ -n "${ITOF_REALDATA:-}" ] || return 0
  local folder
  folder=$(cd "$caller" && realpath -- "$ITOF_REALDATA" 2>/dev/null) && [ -d "$folder" ] ||
    fail "ITOF_REALDATA names $ITOF_REALDATA, which is not a folder"
  export ITOF_REALDATA=$folder
}

# Refuses a preset that is not in a list of CMakePresets.json: buildPresets or testPresets.
# Usage: check_preset LIST PRESET
check_preset() {
  local known
  known=$(sed -n "/\"$1\": \[/,/^  \]/s/.*\"configurePreset\": \"\([^\"]*\)\".*/\1/p" CMakePresets.json)
  [ -n "$2" ] || usage "PRESET is missing: one of ${known//$'\n'/, }"
  grep -qxF -- "$2" <<<"$known" || usage "no preset $2; PRESET is one of ${known//$'\n'/, }"
}

# Refuses a folder below the root that cannot be written, or any of its files. Usage: check_writable FOLDER
check_writable() {
  local path=$1 locked= mend="copy the sources to a folder of your own"
  while [ ! -e "$path" ]; do path=$(dirname "$path"); done
  if [ "$path" = "$1" ]; then
    mend="remove $path, or $mend"
    locked=$(find "$path" ! -type l ! -writable -print -quit 2>/dev/null || true)
  elif [ ! -w "$path" ]; then
    locked=$path
  fi
  [ -z "$locked" ] || fail "cannot write to $(realpath "$locked"), which belongs to $(stat -c %U "$locked"); $mend"
}

# Runs a command that prints nothing. On a terminal, says every ten seconds that it is still running.
# Usage: alive DESCRIPTION COMMAND...
alive() {
  local description=$1 status=0 ticker
  shift
  if [ ! -t 2 ]; then
    "$@"
    return
  fi
  while sleep 10 && kill -0 $$ 2>/dev/null; do printf '%s: %s s\n' "$description" "$SECONDS" >&2; done &
  ticker=$!
  "$@" || status=$?
  kill "$ticker" 2>/dev/null || true
  wait "$ticker" 2>/dev/null || true
  return "$status"
}
