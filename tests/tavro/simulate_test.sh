#!/bin/sh
# `tavro simulate`, and the way from it to an answer: what it makes is what a run of the plant can be
# given, a healthy day of a shipped plant is not reported, and a fault in it is found.
#   simulate_test.sh PROGRAM SOURCE-DIRECTORY
set -u
tavro=$1
plants=$2/plants
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 1
mkdir inp obs disp
failed=0

fail() {
  echo "$1"
  failed=1
}

# refused STATUS WORDS ARGUMENT...: the status, and what the error stream must hold.
refused() {
  status=$1 words=$2
  shift 2
  got=0
  "$tavro" simulate "$@" >out 2>err </dev/null || got=$?
  [ "$got" = "$status" ] || fail "$*: status $got, expected $status"
  grep -qF -- "$words" err || { fail "$*: not told: $words"; cat err; }
  [ -s out ] && fail "$*: something was written"
}

room=$plants/room/room.plant
motor=$plants/motor/motor.plant
refused 2 "required" "$room"
refused 2 "did you mean thermostat.mode=stuck_on?" "$room" --steps 5 --fault thermostat.mod=stuck_on@2
refused 2 "say at which step, as in thermostat.mode=stuck_on@22" \
  "$room" --steps 5 --fault thermostat.mode=stuck_on
refused 2 "behind @ stands a step" "$room" --steps 5 --fault thermostat.mode=stuck_on@x
refused 2 "there is no command room.cmdin=shut" "$room" --steps 5 --command room.cmdin=shut@2
refused 2 "give each one as --input NAME=VALUE" "$motor" --steps 5
refused 2 "did you mean driver.volt?" "$motor" --steps 5 --input driver.vlt=3
refused 2 "there is no input u: the plant has none" "$room" --steps 5 --input u=1
refused 2 "the plant has no inputs: leave out --inputs" "$room" --steps 5 --inputs "$0"
refused 2 "there is no input u: write driver.volt" "$motor" --steps 5 --input u=1
refused 2 "write NAME=VALUE, with a number" "$motor" --steps 5 --input driver.volt=x
refused 4 "can't read file inp/none" "$motor" --steps 5 --inputs inp/none
echo two >inp/words
refused 4 "inp/words:1: 1 numbers are expected" "$motor" --steps 5 --inputs inp/words
refused 2 "write NAME=VALUE, with a number" "$motor" --steps 5 --input driver.volt
refused 2 "there is no input driver.volt: the plant has none" "$room" --steps 5 --input driver.volt=3
refused 2 "there is no command a.b=c: the plant has none" "$motor" --steps 5 --input driver.volt=3 --command a.b=c@1
for step in -1 2x 99999999999 ''; do
  refused 2 "behind @ stands a step" "$room" --steps 5 --fault "thermostat.mode=stuck_on@$step"
done
for steps in -1 2x 3000000000; do
  refused 2 "$steps: write a whole number, at least 0" "$room" --steps=$steps
done
for noise in nan inf -0.1 x; do
  refused 2 "$noise: write a number, at least 0" "$room" --steps 5 --noise=$noise
done
: >inp/empty
refused 4 "inp/empty is empty" "$motor" --steps 5 --inputs inp/empty
refused 4 "can't read file inp" "$motor" --steps 5 --inputs inp
refused 1 "cannot be read" none.plant --steps 5
refused 5 "can't write none/out" "$room" --steps 5 -o none/out

# The room in the middle of its intervals: 0.05 (20 - 4) + 0.15 = 0.95, then 4 + 0.95.
"$tavro" simulate "$room" --steps 1 --uncertainty middle --csv >table
cat >wanted <<'TABLE'
step,time,room.xd,true room.xd,true room.x,true room.xdq,true thermostat.mode,true room.cmdin,true room.c1,true room.mode
0,0,0.9500000000000001,0.9500000000000001,4,16,on,none,c10,closed
1,1,0.9500000000000001,0.9500000000000001,4.95,16,on,none,c10,closed
TABLE
diff wanted table || fail "the table of the room"

for seed in 1 2; do
  "$tavro" simulate "$room" --steps 40 --seed $seed --noise 0.01 >"obs/seed$seed"
done
"$tavro" simulate "$room" --steps 40 --seed 1 --noise 0.01 | cmp -s - obs/seed1 || fail "one seed, two runs"
cmp -s obs/seed1 obs/seed2 && fail "two seeds, one run"

# The window opens at step 2: from then on the room is open, and the command is over a step later.
# A fault that is asked for behind the end does not strike.
"$tavro" simulate "$room" --steps 3 --uncertainty middle --csv --command room.cmdin=open@2 \
  --fault thermostat.mode=stuck_on@4 >table 2>err
[ "$(sed 1d table | cut -d, -f1,8,10 | tr '\n' ' ')" = "0,none,closed 1,none,closed 2,open,open 3,none,open " ] ||
  { fail "a window that is opened"; cat table; }
grep -qF "not every fault has struck" err || fail "a fault that does not strike is told"
# A file of inputs stands over a constant, and its last line stays.
printf '1\n2\n' >inp/rising
"$tavro" simulate "$motor" --steps 3 --csv --input driver.volt=7 --inputs inp/rising >table
volt=$(head -1 table | tr , '\n' | grep -nx driver.volt | cut -d: -f1)
[ "$(cut -d, -f"$volt" table | tr '\n' ' ')" = "driver.volt 1 2 2 2 " ] || { fail "inputs of a file"; cat table; }
# A pump that is started is on a step later, and commands last a step.
"$tavro" simulate "$plants/line/line.plant" --steps 2 --command pump.cmd=start@1 >scenario
[ "$(sed -n 's/^Command \(pump[^ ]*\).*/\1/p' scenario | tr '\n' ' ')" = "pump.cmd=start pump.cmd=none " ] ||
  { fail "the commands of a scenario"; cat scenario; }
if [ -c /dev/full ]; then
  got=0
  "$tavro" simulate "$room" --steps 5 >/dev/full 2>err || got=$?
  [ "$got" = 5 ] && grep -qxF "tavro simulate: can't write standard output" err || fail "data that are lost"
fi

# course VALUES VARIABLE STATEMENTS ARGUMENT...: the true values of a variable at the steps, in a plant of one
# component that says these statements.
course() {
  wanted=$1 variable=$2 steps=$(($(echo "$1" | wc -w) - 1))
  printf 'plant p\nsample 1 s\ntype t {\n%s\n}\na: t\n' "$3" >says.plant
  shift 3
  "$tavro" simulate says.plant --steps $steps --csv "$@" >table
  column=$(head -1 table | tr , '\n' | grep -nx "true $variable" | cut -d: -f1)
  found=$(sed 1d table | cut -d, -f"$column" | tr '\n' ' ')
  [ "$found" = "$wanted " ] || { fail "$variable: $found, expected $wanted"; cat says.plant; }
}

# What a move sets holds from the next step on, by the values of the step at which it is made. The level
# rises by 1 at each step; it is set to 10, to half if it is above 7, to the middle of an interval.
tank='variable level = 3
parameter rate = 1
level integrates 1 * rate
measure level
command c: none, go
mode low, high
idle others
move from low to high when c = go with 1 setting level ='
course "3 4 5 11 12" a.level "$tank 10" --command a.c=go@2
course "3 4 5 6" a.level "$tank 0.5 * level if level > 7" --command a.c=go@2
course "3 4 5 6 7 8 9 5.5" a.level "$tank 0.5 * level if level > 7" --command a.c=go@6
course "3 4 11" a.level "$tank [8, 12]" --command a.c=go@1 --uncertainty middle
for seed in 1 2 3; do
  "$tavro" simulate says.plant --steps 2 --csv --command a.c=go@1 --seed $seed >table
  [ "$(sed -n '4s/,.*//p' table)" = 2 ] && sed -n 4p table | awk -F, '$3 < 9 || $3 > 13 { exit 1 }' ||
    { fail "a number of an interval"; cat table; }
done
# What is of second order begins at rest: y(k) = 2 y(k-1) - y(k-2) would go on from 5 to 10.
course "0 0 0 5 5 5" a.y 'variable y = 0
input u
y integrates twice 1 * u
measure y
command c: none, go
mode low, high
idle others
move from low to high when c = go with 1 setting y = 5' --input a.u=0 --command a.c=go@2

# A constraint gives what holds no state, in place of what its causes say roughly. On a state and on an input
# it is a statement: x goes on as it integrates, u as it is given.
course "5 10 17 26" a.y 'variable x = 2
parameter rate = 1
x integrates 1 * rate
variable y = 5
y = [1, 9] * x
constraint y = x * x + 1
measure y'
statements='variable x = 2
parameter rate = 1
x integrates 1 * rate
variable u = 7 in [0, 99], y = 2 in [0, 99]
input u
y = x
constraint x = 2 * u
constraint u = 3 * y
measure y'
course "2 3 4" a.x "$statements" --input a.u=7
course "2 3 4" a.y "$statements" --input a.u=7
[ "$(sed 1d table | cut -d, -f4 | tr '\n' ' ')" = "7 7 7 " ] || { fail "an input that is constrained"; cat table; }

# A name for a part of a constraint is worked out first, wherever it is told.
ramp='variable x = 2
parameter rate = 1
x integrates 1 * rate
variable y = 9
y = [1, 9] * x
measure y
'
course "9 19 33 51" a.y "${ramp}define d = x * x
define e = 2 * d
constraint y = e + 1"
course "9 19 33 51" a.y "${ramp}constraint y = e + 1
define e = 2 * d
define d = x * x"

# Of three colours clauses leave one: a lamp is dark just when it is off, and never red.
course "dark green" a.lamp 'command c: none, go
mode off, lit
idle others
observe lamp: dark, red, green
move from off to lit when c = go with 1
clause lamp = dark iff mode = off
clause lamp != red
variable x = 0
parameter rate = 1
x integrates 1 * rate
measure x' --command a.c=go@1

# answers PLANT LAST-TIME ARGUMENT...: the answers of a detection with the sharp rules. A run that wrote
# no bounds to disp/d was none, and silence of it would say nothing.
answers() {
  plant=$1 end=$2
  shift 2
  rm -f disp/d
  printf 'init\ndetect %s fault1 3\nquit\n' "$end" |
    "$tavro" console "$plant" --rules=sharp "$@" 2>&1 >/dev/null | grep -aE "^answer|all trajs|rror|[Cc]an't"
  found=$?
  [ -s disp/d ] || { echo "no run"; return 0; }
  return $found
}

# A motor that turns at 10 V from the start; no mode ever moves before it fails, at step 150: 3 s.
yes 10 | head -301 >inp/volt
"$tavro" simulate "$motor" --steps 300 --input driver.volt=10 --seed 5 -o obs/healthy
answers "$motor" 6 volt healthy d >told && { fail "a healthy motor"; cat told; }
"$tavro" simulate "$motor" --steps 300 --inputs inp/volt --seed 5 --fault motor.mode=worn@150 \
  -o obs/worn 2>err
grep -qxF 'tavro simulate: motor.mode=worn from step 150' err || fail "the strike of the fault is told"
[ "$(head -150 obs/worn)" = "$(head -150 obs/healthy)" ] || fail "before the fault the day is another"
answers "$motor" 6 volt worn d >told
grep -qE '^answer: motor ok -> worn (at 3|between .* and (3|3\..*)) ' told || { fail "worn brushes"; cat told; }

# What the pages for newcomers show: their plants are sound, and lead to the answers that stand there.
block() { # PAGE FROM: the indented text from the line FROM on to the next that is not indented
  awk -v from="    $2" '$0 == from { on = 1 } on && /^[^ ]/ { exit } on' "$1" | sed 's/^    //'
}
{
  printf 'plant tank\nsample 10 s\n'
  awk '/^## 2/ { on = 1 } on' "$2/docs/tutorial.md" >second && block second 'type pump {'
  printf 'pump: pump\ntank: tank(pump = pump)\n'
} >tank.plant
"$tavro" check tank.plant || fail "the plant of the tutorial"
yes 2 | head -101 >inp/two
"$tavro" simulate tank.plant --steps 100 --input pump.ordered=2 -o obs/healthy
answers tank.plant 1000 two healthy d >told && { fail "the healthy day of the tutorial"; cat told; }
"$tavro" simulate tank.plant --steps 100 --input pump.ordered=2 --fault pump.mode=off@60 -o obs/off 2>err
answers tank.plant 1000 two off d >told
grep '^    answer' "$2/docs/tutorial.md" | sed 's/^    //' | diff - told || fail "the fault of the tutorial"
# What the page says of `tavro run`, after its command.
said() { sed -n "/^    .*tavro run $2/,\$p" "$1" | sed -n 's/^    \(Healthy\|The bounds\|A fault\|Noticed\|Suspects\|It may\)/\1/p' | head -"$3"; }
"$tavro" simulate tank.plant --steps 100 --input pump.ordered=2 --csv -o healthy.csv
"$tavro" run tank.plant --measures healthy.csv >told
said "$2/docs/tutorial.md" "tank.plant --measures healthy" 2 | diff - told || fail "the healthy log of the tutorial"
"$tavro" simulate tank.plant --steps 100 --input pump.ordered=2 --fault pump.mode=off@60 --csv -o off.csv 2>err
"$tavro" run tank.plant --measures off.csv --report off.html >told
said "$2/docs/tutorial.md" "tank.plant --measures off" 4 | diff - told || fail "the log of the tutorial"
"$tavro" run tank.plant --measures off.csv --steps 64 | grep -q '^A fault, explained: tank sound -> leaking' ||
  fail "the leak of the tutorial"
block "$2/README.md" 'plant boiler' >boiler.plant
"$tavro" check boiler.plant || fail "the plant of README"
"$tavro" simulate boiler.plant --steps 60 --input boiler.inflow=2 --fault boiler.mode=leaking@40 --csv -o day.csv 2>err
"$tavro" run boiler.plant --measures day.csv --report report.html >told
said "$2/README.md" "boiler.plant --measures day" 3 | diff - told || fail "the fault of README"

# The tanks follow their own differential equations (make-days): the plant encloses these. A pump that
# stops at 200 s changes a level from 201 s on.
cp "$plants/tanks/inp/flows.inp" inp/ && cp "$plants/tanks/obs/healthy.obs" "$plants/tanks/obs/pump1.obs" \
  "$plants/tanks/obs/pump2.obs" obs/
answers "$plants/tanks/tanks.plant" 400 flows.inp healthy.obs d >told && { fail "healthy tanks"; cat told; }
for pump in 1 2; do
  answers "$plants/tanks/tanks.plant" 230 flows.inp pump$pump.obs d >told
  grep -qE "^answer: pump$pump ok -> off (at (199|200)|between .* and (199|200)) " told ||
    { fail "pump $pump"; cat told; }
done

# Of the circuit what is seen follows from what is given; a gate that is stuck is seen in it.
"$tavro" simulate "$plants/circuits/c17.plant" --steps 1 >scenario
grep -q '^Observation .*g22.out=low g23.out=low' scenario || { fail "the circuit at rest"; cat scenario; }
"$tavro" simulate "$plants/circuits/c17.plant" --steps 1 --fault g22.mode=stuck_high@1 >scenario 2>err
grep -q 'g22.out=high g23.out=low' scenario || { fail "a stuck gate"; cat scenario; }
exit $failed
