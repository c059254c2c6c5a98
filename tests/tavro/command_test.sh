#!/bin/sh
# The command line of `tavro`: what it prints where, and its statuses.
#   command_test.sh PROGRAM SOURCE-DIRECTORY
set -u
tavro=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failed=0

# expect WHAT STATUS OUT ERR ARGUMENT...: statuses and whole streams; - for what is not looked at.
expect() {
  what=$1 status=$2 out=$3 err=$4
  shift 4
  got=0
  "$tavro" "$@" >out 2>err </dev/null || got=$?
  [ "$got" = "$status" ] || { echo "$what: status $got, expected $status"; failed=1; }
  for stream in out err; do
    eval "wanted=\$$stream"
    [ "$wanted" = - ] && continue
    printf '%s' "$wanted" >wanted
    diff -u wanted "$stream" || { echo "$what: $stream differs"; failed=1; }
  done
}

cat >wrong.plant <<'PLANT'
plant wrong
type lamp {
  mode off, on
  move from of to on with 1
}
lamp: lamp()
PLANT
cat >odd.plant <<'PLANT'
plant odd
type lamp {
  mode off, on
}
lamp: lamp()
PLANT
wrong='wrong.plant:4:13: error: there is no mode of
  4 |   move from of to on with 1
    |             ^^
    did you mean off?

wrong.plant: 1 error, 0 warnings
'
odd='odd.plant:3:13: warning: nothing enters the mode on
  3 |   mode off, on
    |             ^^
    write a move or a fault that leads to it, or take it out

odd.plant: 0 errors, 1 warning
'
missing='error: the file missing.plant cannot be read
  see that it is there and may be read

missing.plant: 1 error, 0 warnings
'
expect "a sound plant" 0 "" "" check "$source/plants/room/room.plant"
expect "a wrong plant" 1 "" "$wrong" check wrong.plant
expect "a warning" 0 "" "$odd" check odd.plant
expect "several plants" 1 "" "$wrong$odd" check wrong.plant odd.plant
expect "no file" 1 "" "$missing" check missing.plant
expect "a directory" 1 "" - check .
expect "nothing to check" 2 "" - check
expect "nothing to do" 2 "" - 
expect "an unknown subcommand" 2 "" - chekc
expect "an unknown option" 2 "" - check --fast odd.plant
expect "help" 0 - "" --help
grep -q "check " out || { echo "help does not tell of check"; failed=1; }
expect "help of a subcommand" 0 - "" console --help
grep -q "tavro console FILE" out || { echo "help of console shows no use"; failed=1; }
version=$(sed -n 's/^project(tavro VERSION \([0-9.]*\).*/\1/p' "$source/CMakeLists.txt")
expect "version" 0 "tavro $version
" "" --version
expect "a console without a plant" 2 "" - console
expect "a console on a wrong plant" 1 "" "${wrong%
wrong.plant: *}" console wrong.plant
exit $failed
