#!/bin/bash
# `tavro run` as a user runs it: answers, statuses, both forms of data, what is refused, and what is
# written where.
#   run_test.sh PROGRAM SOURCE-DIRECTORY
set -u
tavro=$1
source=$2
obs=$source/examples/room/obs
room=$source/plants/room/room.plant
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failed=0

fail() {
  echo "$1"
  failed=1
}

# run STATUS ARGUMENT...: the answer is in out, what was told beside it in err.
run() {
  local status=$1 got=0
  shift
  "$tavro" run "$@" >out 2>err </dev/null || got=$?
  [ "$got" = "$status" ] || { fail "$*: status $got, expected $status"; cat out err; }
}
says() { grep -qF -- "$1" out || { fail "not in the answer: $1"; cat out; }; }
tells() { grep -qF -- "$1" err || { fail "not told: $1"; cat err; }; }
silent() { [ -s err ] && { fail "$1 is told something"; cat err; }; }

# ---- Answers ----

# The day is a healthy one, so its README says; its measures lie between -0.558909 and 0.951942.
run 0 "$room" -m "$obs/healthy.obs"
silent "a healthy day"
says "Healthy: 240 steps, up to 240 s"
says "it was measured from -0.559 to 0.952."

# The thermostat sticks on at 22, and heats where it would have stopped from then on.
run 10 "$room" -m "$obs/stuck_on.obs"
silent "an explained fault"
says "A fault, explained: thermostat on -> stuck_on between "
says "Noticed at 27 s: measured room.xd above all bounds."
says "It may also be: "
from=$(sed -n 's/.*stuck_on between \([0-9]*\) and \([0-9]*\) s.*/\1/p' out)
to=$(sed -n 's/.*stuck_on between \([0-9]*\) and \([0-9]*\) s.*/\2/p' out)
[ "$from" -le 22 ] && [ 22 -le "$to" ] || fail "22 is not between $from and $to"

# A window that nobody told of is no failure of the plant: only a mode that tells nothing is left.
run 11 "$room" -m "$obs/window_open.obs"
says "A fault that nothing in the plant explains."
says "unknown"
# Told of the commands, the same kind of day is healthy.
run 11 "$room" -m "$obs/window_command.obs"
run 0 "$room" -m "$obs/window_command.obs" -s "$source/examples/room/inp/window_command.scn"

# With one candidate the others are dropped, and with them what might have explained it.
run 6 "$room" -m "$obs/window_open.obs" --candidates 1
says "No answer: a limit was met."
says "dropped by the limit on their number"

# Up to 20 nothing has failed; a step beyond the data is told.
run 0 "$room" -m "$obs/stuck_on.obs" --steps 20
says "20 steps, up to 20 s"
run 0 "$room" -m "$obs/healthy.obs" --steps 300
tells "the data end at step 240"

# A circuit: its scenario is its day.
circuits=$source/plants/circuits
# All inputs are high. That g22 is low takes g22 to be stuck there, or g10, which is low by its inputs, to be
# stuck high: 0.005 each, and each leads to what is seen for certain.
run 10 "$circuits/c17.plant" -s "$circuits/c17.scn"
says "g22 ok -> stuck_low at step 1 (probability 0.5)"
says "g10 ok -> stuck_high at step 1 (probability 0.5)"
# Two observations that a healthy circuit makes: what a search finds besides does not make it ill.
# The first: g10 = g16 = high, since in1 and g11 are low, so g22 is low; g19 = high, so g23 is low. The
# second: g10 = high, g11 = high, so g16 and g19 are low, and both outputs high.
cat >two.scn <<'SCENARIO'
Command
Observation in1.out=low in2.out=high in3.out=high in6.out=high in7.out=high g22.out=low g23.out=low
Command
Observation in1.out=high in2.out=high in3.out=low in6.out=high in7.out=high g22.out=high g23.out=high
SCENARIO
run 0 "$circuits/c17.plant" -s two.scn
says "nothing that needs a failure"
run 2 "$circuits/c17.plant" -m "$obs/healthy.obs" --scenario "$circuits/c17.scn"
tells "this plant has no measures: leave out --measures"
run 2 "$room" -m "$obs/healthy.obs" -i "$obs/healthy.obs"
tells "this plant has no inputs: leave out --inputs"
run 2 "$circuits/c17.plant"
tells "--scenario"

# A lost sensor may show anything, so that from then on nothing is noticed; a motor has more dates than are tried.
ahu=$source/plants/ahu
run 10 "$ahu/ahu.plant" -m "$ahu/obs/heating_open.obs" -i "$ahu/inp/heating_open.inp" -s "$ahu/inp/day.scn" \
  --noise 0.1,pressure_sensor.shown=3
says "A fault, explained: heating ok -> stuck_open"
says "Do not trust a silence from"
"$tavro" simulate "$source/plants/motor/motor.plant" --steps 300 --input driver.volt=10 \
  --fault motor.mode=worn@150 --csv -o motor.csv 2>/dev/null
run 10 "$source/plants/motor/motor.plant" -m motor.csv
says "A fault, explained: motor ok -> worn"
says "Not every date was tried"

# ---- CSV ----

sed 's/ .*//' "$obs/stuck_on.obs" >numbers
{ echo room.xd; cat numbers; } >one.csv
run 10 "$room" -m one.csv
cp out answer
# In any order of columns, with others, in quotes, with semicolons and decimal commas.
awk 'BEGIN { print "\"note, long\",room.xd,k" } { printf "\"a \"\"b\"\", c\",%s,%d\r\n", $1, NR }' numbers >two.csv
run 10 "$room" -m two.csv
cmp -s out answer || fail "columns in another order make another answer"
tells "two.csv: skipped, for nothing of that name is looked for: note, long, k"
awk 'BEGIN { print "time;room.xd" } { v = $1; sub(/\./, ",", v); printf "%d;%s\n", NR - 1, v }' numbers >three.csv
run 10 "$room" -m three.csv
cmp -s out answer || fail "semicolons make another answer"
silent "a table with semicolons"
# Dates, in steps of a second.
awk 'BEGIN { print "time,room.xd" } { t = NR - 1; printf "2026-11-22T23:%02d:%02d,%s\n", 58 + int(t / 60), t % 60, $1 } NR == 100 { exit }' numbers >dates.csv
run 10 "$room" -m dates.csv

# Rows that are left out are steps with nothing measured, as are empty cells: the same answer.
awk 'BEGIN { print "time,room.xd" } NR % 7 != 5 { print NR - 1 "," $1 }' numbers >gaps.csv
awk 'BEGIN { print "time,room.xd" } { print NR - 1 "," (NR % 7 == 5 ? "" : $1) }' numbers >cells.csv
run 10 "$room" -m gaps.csv
tells "steps are left out before this row"
cp out gaps
run 10 "$room" -m cells.csv
cmp -s out gaps || fail "a row left out and an empty cell are not the same"
# A measure that is missing is not compared: a healthy day with holes is healthy.
{ echo room.xd; awk '{ print NR % 3 == 0 ? "nan" : $1 }' "$obs/healthy.obs"; } >holes.csv
run 0 "$room" -m holes.csv

# ---- What is refused ----

run 2 "$room"
tells "give the measures of room.xd with --measures FILE"
run 2 "$room" -m one.csv --isolate 4
run 2 "$room" -m one.csv --noise x
tells "write a number, or MEASURE=NUMBER"
run 2 "$room" -m one.csv --noise room.y=1
tells "room.y is not measured in this plant"
run 2 "$room" -m one.csv --rules sharpest
tells "there is no rule \"sharpest\""
run 2 "$room" -m one.csv --json - --csv -
tells "two results are to be written to standard output"
run 2 "$room" -m one.csv --json same --csv ./same
tells "two results are to be written to ./same"
[ -e same ] && fail "a file is written though the run is refused"
: >nodirectory
run 5 "$room" -m one.csv --graphs nodirectory/graphs
tells "can't make directory nodirectory/graphs: "
cp one.csv kept.csv
ln -s kept.csv link.csv
run 2 "$room" -m kept.csv --csv link.csv
tells "it is read by this run"
cmp -s kept.csv one.csv || fail "the measures were overwritten"
echo "plant" >wrong.plant
run 3 wrong.plant -m one.csv
tells "wrong.plant:1"
run 3 none.plant -m one.csv
run 4 "$room" -m none.csv
tells "can't read file none.csv"
: >empty
run 4 "$room" -m empty
tells "empty holds no data"
echo "0,938" >comma
run 4 "$room" -m comma
tells 'comma:1: "0,938" is no number: decimals stand behind a point'
printf 'room.x,time\n1,2\n' >other.csv
run 4 "$room" -m other.csv
tells "no column has a name that is looked for: room.xd"
printf 'motor.sped,driver.volt\n1,10\n' >misspelt.csv
run 4 "$source/plants/motor/motor.plant" -m misspelt.csv
tells "misspelt.csv: there is no column for any measure"
for steps in abc -3 1e3; do
  run 2 "$room" -m one.csv --steps=$steps
  tells "$steps: write a whole number, at least 0"
done
printf 'room.xd,room.xd\n1,2\n' >twice.csv
run 4 "$room" -m twice.csv
tells "there are two columns room.xd"
printf 'room.xd,a\n1\n' >short.csv
run 4 "$room" -m short.csv
tells "short.csv:2: 1 cells under a heading of 2"
printf 'time,room.xd\n0,1\n0.5,1\n' >between.csv
run 4 "$room" -m between.csv
tells "lies between two steps"
printf 'time,room.xd\n0,1\n1,1\n1,1\n' >back.csv
run 4 "$room" -m back.csv
tells "does not come after the one before"
printf 'time,room.xd\nsoon,1\n' >soon.csv
run 4 "$room" -m soon.csv
tells "neither a number of seconds nor a date"
printf 'room.xd\nhigh\n' >word.csv
run 4 "$room" -m word.csv
tells '"high" in the column room.xd is no number'
printf '5 Command room.cmdin=ajar\n' >ajar.scn
run 4 "$room" -m one.csv -s ajar.scn
tells "ajar.scn:1: the plant has no such command: room.cmdin=ajar"
printf '5.5 Command room.cmdin=open\n' >half.scn
run 10 "$room" -m one.csv -s half.scn
tells "half.scn:1: the date 5.5 meets no step"
printf 'shut it\n' >words.scn
run 4 "$room" -m one.csv -s words.scn
tells "an event begins with its date in seconds"
run 5 "$room" -m one.csv --json none/out
tells "can't write file none/out"
[ -s out ] && fail "a run was made for a file that cannot be written"
# Devices may be named twice: nothing of them can be overwritten.
run 10 "$room" -m one.csv --json /dev/null --csv /dev/null
if [ -c /dev/full ]; then
  run 5 "$room" -m one.csv --csv /dev/full
  tells "/dev/full"
  got=0
  "$tavro" run "$room" -m one.csv >/dev/full 2>err || got=$?
  [ "$got" = 5 ] || fail "an answer that is lost: status $got"
  got=0
  "$tavro" run "$room" -m one.csv --json - >/dev/full 2>err || got=$?
  [ "$got" = 5 ] || fail "a document that is lost: status $got"
  tells "Can't write standard output"
  tells "A fault, explained"
fi

# ---- What is written ----

run 10 "$room" -m one.csv --json all.json --jsonl steps.jsonl --csv rows.csv --graphs graphs --report page.html
cmp -s out answer || fail "results change the answer"
[ "$(wc -l <steps.jsonl)" = 241 ] || fail "a line per step: $(wc -l <steps.jsonl)"
head -1 rows.csv | grep -q '^step,time,place,candidate,' || fail "the heading of the table"
# A row per step and candidate: as many as candidates in the lines.
[ "$(tail -n +2 rows.csv | wc -l)" = "$(grep -o '"agrees"' steps.jsonl | wc -l)" ] || fail "rows of the table"
grep -q 'digraph candidate1' graphs/candidate1.dot || fail "no graph"
# Graphs of an earlier run with more candidates are taken away, and nothing else.
cp graphs/candidate1.dot graphs/candidate4.dot
cp graphs/candidate1.dot graphs/candidate5.dot
cp graphs/candidate1.dot graphs/kept.dot
run 10 "$room" -m one.csv --graphs graphs
[ "$(ls graphs | tr '\n' ' ')" = "candidate1.dot candidate2.dot candidate3.dot kept.dot " ] || { fail "graphs left"; ls graphs; }
# With - nothing but the result is on standard output.
"$tavro" run "$room" -m one.csv --json - >stdout 2>stderr
cmp -s stdout all.json || fail "the document on standard output is another one"
cmp -s stderr answer || fail "the answer is not on the error stream"
# The documents have the form that is told.
if /usr/bin/python3 -c 'import jsonschema' 2>/dev/null; then
  schema=$source/docs/run.schema.json
  "$tavro" run "$room" -m "$obs/healthy.obs" --json healthy.json >/dev/null
  for document in all healthy; do
    /usr/bin/python3 -W ignore -m jsonschema -i $document.json "$schema" >err 2>&1 ||
      { fail "$document.json has another form"; head -c 600 err; }
  done
fi
# Traces only where they are asked for.
run 10 "$room" -m one.csv --trace
[ "$(wc -l <err)" -gt 100 ] || fail "no trace"

# No colours without a terminal; with one, but for NO_COLOR.
grep -q "$(printf '\033')" answer && fail "colours in a file"
if script -qec true /dev/null >/dev/null 2>&1; then
  script -qec "$tavro run $room -m one.csv" /dev/null </dev/null >seen
  grep -q "$(printf '\033')\[31m" seen || fail "no colour in a terminal"
  NO_COLOR=1 script -qec "$tavro run $room -m one.csv" /dev/null </dev/null >seen
  grep -q "$(printf '\033')\[31m" seen && fail "colours in spite of NO_COLOR"
fi

# ---- An interrupt ----

# 200,000 steps take many seconds; the results until the signal are whole.
awk 'BEGIN { print "room.xd" } { v[NR] = $1 } END { for (k = 0; k < 200000; ++k) print v[k % 240 + 1] }' "$obs/healthy.obs" >long.csv
got=0
timeout --preserve-status -s INT 2 "$tavro" run "$room" -m long.csv --jsonl cut.jsonl --csv cut.csv \
  >out 2>err </dev/null || got=$?
[ "$got" = 130 ] || fail "an interrupted run ends with $got"
says "Interrupted: "
steps=$(sed -n 's/^Interrupted: \([0-9]*\) step.*/\1/p' out)
[ "$(wc -l <cut.jsonl)" = $((steps + 1)) ] || fail "$steps steps and $(wc -l <cut.jsonl) lines"
tail -c 1 cut.csv | grep -q . && fail "the last row is cut"

# Who watches in a terminal is told after two seconds how far the run is; nobody else is.
grep -q 'left' err && fail "progress without a terminal"
if script -qec true /dev/null >/dev/null 2>&1; then
  timeout -s INT 60 script -qfec "$tavro run $room -m long.csv" /dev/null </dev/null >seen 2>&1 &
  pid=$!
  for _ in $(seq 300); do
    grep -qaE 'step [0-9]+ of 199999, [0-9:]+ left' seen && break
    sleep 0.2
  done
  grep -qaE 'step [0-9]+ of 199999, [0-9:]+ left' seen || fail "no progress in a terminal"
  kill -TERM $pid
  wait $pid
fi

exit $failed
