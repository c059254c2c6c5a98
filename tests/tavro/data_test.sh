#!/bin/bash
# What `tavro run` makes of data: for each way in which a log, its inputs and its scenario can be written,
# the values that the run was given at each step, and what is told; and what is refused.
#   data_test.sh PROGRAM SOURCE-DIRECTORY
set -u
tavro=$1
source=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
failed=0

fail() {
  echo "$1"
  failed=1
}

# Two measures and an input. Threshold 100: whatever is measured, the run is healthy, so that only the
# data count.
cat >tank.plant <<'PLANT'
plant tank
sample 2 s
type tank {
  variable level = 10 in [0, 40]
  variable back = 20 in [0, 80]
  input inflow
  command tap: none, turn
  mode ok, leaking
  level integrates inflow
  out: level integrates -[0.1, 0.2] * level   when mode = ok
  leak: level integrates -[0.3, 0.5] * level  when mode = leaking
  back = [1.9, 2.1] * level
  idle ok with 0.99
  idle leaking with 1
  fail from ok to leaking when tap = turn with 0.01
  measure level
  measure back
}
tank: tank
PLANT

# run FILE ARGUMENT...: what was told in err; in given, per step, the input and both measures.
run() {
  local got=0
  "$tavro" run tank.plant --threshold 100 -m "$@" --csv rows >out 2>err </dev/null || got=$?
  [ $got = 0 ] || { fail "$*: status $got"; cat out err; }
  awk -F, 'NR > 1 { print $1, $9 "," $10 "," $11 }' rows | sort -nu >given
}
# gives NAME LINE...: the steps and values of the last run.
gives() {
  local name=$1
  shift
  printf '%s\n' "$@" | diff - given || fail "$name: other values were given"
}
tells() { grep -qxF -- "tavro run: $1" err || { fail "not told: $1"; cat err; }; }
silent() { [ -s err ] && { fail "$1 is told something"; cat err; }; }
# refuses STATUS WORDS ARGUMENT...
refuses() {
  local status=$1 words=$2 got=0
  shift 2
  "$tavro" run tank.plant "$@" >out 2>err </dev/null || got=$?
  [ "$got" = "$status" ] || { fail "$*: status $got, expected $status"; cat out err; }
  tells "$words"
  [ -s out ] && fail "$*: an answer"
}

printf '2\n3\n4\n' >two.inp

# ---- Numbers with blanks between ----

printf '# level back\n10 20\n\n+10.5\t-  # nothing\n NaN 2e1 \r\n' >plain
run plain -i two.inp
silent "a file of numbers"
gives "numbers" "0 2,10,20" "1 3,10.5," "2 4,,20"
# What no number can hold is missing.
printf '10 20\ninf 21\n10 NA\n' >infinite
run infinite -i two.inp
gives "infinite" "0 2,10,20" "1 3,,21" "2 4,10,"
printf '10 20 30\n10 21\n10 22 5 6\n' >more
run more -i two.inp
tells "more:1: 3 numbers, of which the first 2 are used, here and below"
[ "$(wc -l <err)" = 1 ] || fail "more numbers are told more than once"
gives "more numbers" "0 2,10,20" "1 3,10,21" "2 4,10,22"
printf '10 20\n10\n' >fewer
refuses 4 "fewer:2: 1 of 2 numbers are there: tank.level or tank.back" -m fewer -i two.inp
printf '10 20\n10 high\n' >word
refuses 4 'word:2: "high" is no number' -m word -i two.inp

# ---- Inputs ----

printf '2\n-\n' >ends.inp
run more -i ends.inp
tells "ends.inp: the input tank.inflow is missing at step 1; the last value stays, here and below"
tells "ends.inp: inputs end at step 1; the last ones stay"
gives "inputs that end" "0 2,10,20" "1 2,10,21" "2 2,10,22"
printf -- '-\n2\n' >late.inp
refuses 4 "late.inp: the first value of the input tank.inflow is missing" -m plain -i late.inp
refuses 4 "plain: there is no column for the input tank.inflow, and no file of inputs is given" -m plain

# ---- Tables ----

# Tabs; a column that the run does not need; a measure that the table does not have. Cells at the ends of a
# line, and all of them, may be empty: a line of tabs is a row. A line of blanks is none.
printf 'tank.back\tvalve\ttank.inflow\n20\t1\t2\n\t1\t3\n  \n21\t1\t\n\t\t\n22\t1\t4\r\n' >tabs
run tabs
tells "tabs: skipped, for nothing of that name is looked for: valve"
tells "tabs: there is no column tank.level, which is taken as missing"
gives "tabs" "0 2,,20" "1 3,," "2 3,,21" "3 3,," "4 4,,22"
# A column of numbers without a name, as programs write it that number their rows.
for separator in , ';' '\t'; do
  printf '# numbered\nXtank.levelXtank.inflow\n0X10X2\n1XX3\n' | sed "s/X/$separator/g" >numbered
  run numbered
  gives "numbered rows with $separator" "0 2,10," "1 3,,"
done
# More than eight such columns are counted.
printf 'a,b,c,d,e,f,g,h,i,j,tank.back,tank.inflow,true tank.level,\n1,1,1,1,1,1,1,1,1,1,20,2,7,\n' >many
run many
tells "many: skipped, for nothing of that name is looked for: a, b, c, d, e, f, g, h and 2 more"
gives "many columns" "0 2,,20"
# Steps, two seconds each; the first row is time 0 whatever its number.
printf 'step,tank.level,tank.back,tank.inflow\n7,10,20,2\n8,11,null,2\n10,inf,23,2\n' >steps
run steps
tells "steps:4: steps are left out before this row; they are taken as missing, here and below"
tells "steps: the input tank.inflow is missing at step 2; the last value stays, here and below"
gives "steps" "0 2,10,20" "1 2,11," "2 2,," "3 2,,23"
# Seconds with the comma of a decimal, within a tenth of a step; all in quotes.
printf '"time";"tank.level";"tank.back";"tank.inflow"\n"0,5";"10,5";20;2\n"2,6";+11;21;2\n' >commas
run commas
silent "a table with commas of decimals"
gives "commas" "0 2,10.5,20" "1 2,11,21"
# Dates: without seconds, with a fraction, with a zone, of which all rows must have the same.
printf 'time,tank.level,tank.back,tank.inflow\n%s,10,20,2\n%s,11,21,2\n%s,12,22,2\n%s,13,23,2\n' \
  '2024-02-29 23:59' 2024-02-29T23:59:02.1 2024-02-29T23:59:04Z 2024-02-29T23:59:06+01:00 >dates
run dates
silent "a table with dates"
gives "dates" "0 2,10,20" "1 2,11,21" "2 2,12,22" "3 2,13,23"
# Of a day there are 86,400 seconds, which are 43,200 steps.
printf 'time,tank.level,tank.back,tank.inflow\n2024-02-29,10,20,2\n2024-03-01,10,20,2\n' >days
run days --candidates 1
[ "$(wc -l <given)" = 43201 ] || fail "a day has $(wc -l <given) steps"

for wrong in 2024-02-29T 2024-02-29T9h 2024-02-29T09:30:00x 2024-02-29T09:30:00.x 29.02.2024 nan inf ""; do
  printf 'time,tank.level,tank.inflow\n%s,10,2\n' "$wrong" >when
  refuses 4 "when:2: \"$wrong\" is neither a number of seconds nor a date as 2026-11-22T09:30:00" -m when
done
printf 'time,tank.level,tank.inflow\n0,10,2\n30000000,10,2\n' >far
refuses 4 "far:3: the time 3e+07 lies more than ten million steps away" -m far
printf 'tank.level,tank.inflow\n"10,2\n' >quote
refuses 4 "quote:2: a quote is not closed" -m quote
printf 'tank.level,tank.inflow\n' >heading
refuses 4 "heading has a heading and no rows" -m heading
printf 'tank.back,time\n20,0\n' >noinput
refuses 4 "noinput: there is no column for the input tank.inflow, and no file of inputs is given" -m noinput

# ---- Scenarios ----

printf '10 20\n10 21\n10 22\n' >three
# Each date is tried: that of no step, before the first, that of the start, behind the end.
printf '# later\n-2 Command tank.tap=turn\n0 Command tank.tap=turn\n6 Command tank.tap=turn\n\n4 Command tank.tap=turn\n' >dates.scn
run three -i two.inp -s dates.scn
tells "dates.scn:2: the date -2 meets no step, the event is left out"
tells "dates.scn:3: the date 0 meets no step, the event is left out"
tells "dates.scn:4: the date 6 meets no step, the event is left out"
[ "$(wc -l <err)" = 3 ] || { fail "the command at 4 s, which is step 2"; cat err; }
printf '2 Kommand tank.tap=turn\n' >kind.scn
refuses 4 'kind.scn:1: an event is a Command or an Observation, not "Kommand"' -m three -i two.inp -s kind.scn
printf '2 Observation\n' >seen.scn
refuses 4 "seen.scn:1: a plant with measures takes commands alone" -m three -i two.inp -s seen.scn
printf '2 Observation a.b=c\n' >unknown.scn
refuses 4 "unknown.scn:1: the plant has no such observation: a.b=c; it has none" -m three -i two.inp -s unknown.scn
printf '2 Command tank.tap=tun\n' >near.scn
refuses 4 "near.scn:1: the plant has no such command: tank.tap=tun; did you mean tank.tap=turn?" \
  -m three -i two.inp -s near.scn
refuses 4 "can't read file none.scn" -m three -i two.inp -s none.scn

exit $failed
