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
expect "a size" 0 "" "" check --set valves=64 "$source/plants/line/line.plant"
expect "a size of nothing" 1 "" - check --set vlaves=64 "$source/plants/line/line.plant"
grep -q "did you mean valves?" err || { echo "a size of nothing: not told"; failed=1; }
echo quit >script
"$tavro" console --set valves=3 --name tavro-three "$source/plants/line/line.plant" none.scn <script >out 2>err
grep -qx "Leaving tavro-three." err || { echo "a console of another name"; failed=1; }
"$tavro" show --set valves=3 "$source/plants/line/line.plant" | grep -q "^valve3 " || { echo "show: no third valve"; failed=1; }
expect "a console on a wrong plant" 1 "" "${wrong%
wrong.plant: *}" console wrong.plant

# A plant in words: all of the lamp, which has one of each kind of statement that it can have.
cat >lit.plant <<'PLANT'
plant lit
sample 2 s
type lamp {
  parameter gain = 0.5
  variable heat = 3 in [0, 40]
  input power
  mode off, on, broken
  command switch: none, press
  region warmth: cold when heat < 10, warm when 10 <= heat <= 20, hot when heat > 20
  heat integrates [0.1, 0.2] * power @ 1  when mode = on
  move from off to on when switch = press with 0.9
  fail from on to broken when warmth != cold with 0.1
  idle others
  measure heat
  display heat
}
l: lamp() symbol L
PLANT
shown='plant lit: 1 component, a step is 2 s

l (lamp, L)
  parameter gain = 0.5
  variable heat = 3 in [0, 40], measured, displayed
  variable power, an input
  mode variable mode: off, on, broken; starts in off
  command switch: none, press; starts in none
  region warmth of heat: cold below 10, warm from 10 up to 20, hot above 20; starts in cold
  L.i1: heat integrates [0.1, 0.2] * power @ 1  when mode = on
  off -> on when switch = press with 0.9
  failure on -> broken when warmth != cold with 0.1
'
"$tavro" show lit.plant >out 2>err || { echo "show: status $?"; cat err; failed=1; }
printf '%s' "$shown" >wanted
grep -v '^  stays' out | diff wanted - || { echo "show: another text"; failed=1; }
grep -q '^  stays broken' out || { echo "show: no idle move"; failed=1; }
expect "show: a wrong plant" 1 "" - show wrong.plant
expect "show: nothing" 2 "" - show
expect "show: a picture where there is no place" 5 "" - show lit.plant --svg /dev/null/x
if command -v dot >/dev/null; then
  "$tavro" show lit.plant --svg pictures >out || { echo "show: no pictures"; failed=1; }
  printf 'pictures/causal.svg\npictures/l.mode.svg\n' | diff - out || failed=1
  for text in 'l.power&#45;&gt;l.heat' 'L.i1'; do
    grep -qF -- "$text" pictures/causal.svg || { echo "show: no $text in the graph"; failed=1; }
  done
  for text in 'on&#45;&gt;broken' 'switch = press 0.9'; do
    grep -qF -- "$text" pictures/l.mode.svg || { echo "show: no $text in the modes"; failed=1; }
  done
fi
exit $failed
