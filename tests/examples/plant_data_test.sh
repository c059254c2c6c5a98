#!/bin/sh
# Checks the data of examples/room: that the plant still makes the committed files, byte for byte,
# under every awk of this machine, and that they tell the story their README promises. What tells is
# a program of its own, which knows the equations of the room but none of the code: it goes by the
# measured rates and by the true state written behind them. Then that the console scripts can be
# run, and that the table behind their pictures is what the measures and the display file say.
#
# Usage: plant_data_test.sh [directory]     default: examples/room of this project
# Exit status 1 when anything is wrong, with a diff or a line for each finding.
set -u
LC_ALL=C
export LC_ALL

here=$(CDPATH='' cd -- "$(dirname -- "$0")" && pwd)
room=$(CDPATH='' cd -- "${1:-$here/../../examples/room}" && pwd) || exit 1
tmp=$(mktemp -d) || exit 1
trap 'rm -rf "$tmp"' EXIT
trap 'exit 1' HUP INT TERM
# The scripts have to work from any directory, so be in one that has nothing to do with them.
cd / || exit 1

failed=0
complain() {
  echo "plant_data_test: $*" >&2
  failed=1
}

# The committed files are those that the plant makes, no more and no fewer.

check_regeneration() {
  made=$tmp/by_$1
  if ! AWK=$1 "$room/make-data" "$made"; then
    complain "make-data fails under $1"
    return
  fi
  diff -ru "$room/obs" "$made/obs" || complain "obs/ is not what $1 makes"
  diff -u "$room/inp/window_command.scn" "$made/inp/window_command.scn" ||
    complain "the scenario is not what $1 makes"
}

check_every_awk() {
  for awk in awk mawk gawk; do
    if command -v $awk >/dev/null; then
      check_regeneration $awk
    fi
  done
}

# What the plant does with its parameters.

plant() {
  for parameter; do
    shift
    set -- "$@" -v "$parameter"
  done
  awk "$@" -f "$room/plant.awk"
}

check_refusal() {
  said=$(plant "$1" 2>&1 >"$tmp/refused")
  status=$?
  [ $status -eq 1 ] || complain "$1 gives exit status $status"
  [ "$said" = "plant.awk: cannot use $1" ] || complain "$1 is answered by '$said'"
  [ ! -s "$tmp/refused" ] || complain "$1 makes data all the same"
}

check_refusals() {
  # Seeds 0 and 2147483647 would stay at 0 for ever.
  for parameter in seed=0 seed=2147483647 seed=1.5 steps=many steps=-1 fault=stuck \
    fault_step=-1 open_at=-2 close_at=soon bias=big noise=. sun=0.0499 sun=0.2501 sun=-1 sun=hot; do
    check_refusal $parameter
  done
}

# The least and the greatest mean leave the term within 0 .. 0.3, so they are taken.
check_sun_limits() {
  for sun in 0.05 0.25; do
    plant sun=$sun >"$tmp/sun_$sun" || complain "sun=$sun is refused"
    facts_beside "$tmp/sun_$sun" "$tmp/sun_$sun" name="sun $sun" sun=$sun
  done
}

check_steps() {
  [ "$(plant steps=0 | wc -l)" -eq 1 ] || complain "steps=0 is not the line of time 0 alone"
  plant steps=100 | diff - "$tmp/healthy_to_100" || complain "a shorter day is another day"
}

# The facts of a day, told beside the healthy day of the same seed: awk -f facts.awk healthy day.
# Tolerances: x is printed to half of 1e-4 and a rate to half of 1e-6. So the difference of two x is
# good to 1e-4, and what is left of a rate without its exchange term, 0.05 times an x, to 3e-6.
cat >"$tmp/facts.awk" <<'END_OF_FACTS'
BEGIN {
  SHAPE = "^-?[0-9]+[.][0-9][0-9][0-9][0-9][0-9][0-9]   # k=[0-9]+ " \
    "x=[0-9]+[.][0-9][0-9][0-9][0-9] thermostat=(on|off|stuck_on|stuck_off) window=(open|closed)$"
  HEALTHY = 1; DAY = 2
  LAST = 240
  sun = sun == "" ? 0.15 : sun
  sensor_fault = fault ~ /^sensor_/
}

FNR == 1 { file++ }
$0 !~ SHAPE || $3 != "k=" (FNR - 1) { wrong(FNR - 1, "reads " $0) }
{
  rate[file, FNR - 1] = $1
  x[file, FNR - 1] = substr($4, 3) + 0   # else compared as text
  thermostat[file, FNR - 1] = substr($5, 12)
  window[file, FNR - 1] = substr($6, 8)
  truth[file, FNR - 1] = $3 " " $4 " " $5 " " $6
}

END {
  if (file != 2 || NR != 2 * (LAST + 1))
    wrong(LAST, "does not end the day")
  if (sensor_fault)
    check_sensor()
  else
    check_physics()
  check_thermostat()
  check_window()
  check_departure()
  if (fault ~ /^stuck_/)
    check_stuck()
  else if (fault != "window_open")
    check_crossings()
  exit bad
}

function check_physics(   k) {
  if (x[DAY, 0] != 4)
    wrong(0, "starts at another temperature")
  for (k = 1; k <= LAST; k++)
    if (!near(x[DAY, k] - x[DAY, k - 1], rate[DAY, k - 1], 0.000101))
      wrong(k, "x is not the x before plus the rate before")
  check_disturbances()
}

# The disturbance is what the exchange leaves of a rate: within sun +- 0.05, over all of that range
# rather than in a part of it, and that of the healthy day whatever else happens.
function check_disturbances(   k, u, least, most) {
  least = 1
  most = 0
  for (k = 0; k <= LAST; k++) {
    u = disturbance(DAY, k)
    least = u < least ? u : least
    most = u > most ? u : most
    if (!near(u, disturbance(HEALTHY, k), 0.000006))
      wrong(k, "is disturbed as the healthy day is not: " u)
  }
  if (!near(least, sun - 0.0475, 0.002503) || !near(most, sun + 0.0475, 0.002503))
    wrong(LAST, "is disturbed from " least " to " most)
}

# Time 0 takes the temperature of time 0 and a closed window. The heater is on unless the thermostat
# is stuck off before the first rate; at 4 degrees nothing switches at step 0 itself.
function disturbance(f, k) {
  if (k == 0)
    return rate[f, 0] - 0.05 * (starts_stuck(f) ? 4 - 4 : 20 - 4)
  return rate[f, k] - (window[f, k - 1] == "open" ? 0.0002 : 0.05) * \
    ((thermostat[f, k - 1] ~ /on$/ ? 20 : 4) - x[f, k - 1])
}

function starts_stuck(f) {
  return f == DAY && fault == "stuck_off" && fault_step == 0
}

function check_sensor(   k, off) {
  for (k = 0; k <= LAST; k++) {
    off = rate[DAY, k] - rate[HEALTHY, k]
    if (fault != "sensor_noise" && k < fault_step && off != 0)
      wrong(k, "measures wrong before the fault")
    if (fault == "sensor_bias" && k >= fault_step && !near(off, 0.5, 0.0000015))
      wrong(k, "is biased by " off)
    if (fault == "sensor_dead" && k >= fault_step && rate[DAY, k] != "0.000000")
      wrong(k, "measures " rate[DAY, k])
  }
  if (fault == "sensor_noise")
    check_noise()
}

# The noise fills +- 0.02 and has nothing to do with the disturbance: over 241 steps the correlation
# of two independent series is about 1 / sqrt(241) = 0.06 from 0.
function check_noise(   k, off, u, least, most, off2, u2, both) {
  for (k = 0; k <= LAST; k++) {
    off = rate[DAY, k] - rate[HEALTHY, k]
    u = disturbance(HEALTHY, k) - sun
    least = off < least ? off : least
    most = off > most ? off : most
    off2 += off * off
    u2 += u * u
    both += off * u
  }
  if (least < -0.020001 || least > -0.019 || most < 0.019 || most > 0.020001)
    wrong(LAST, "has noise from " least " to " most)
  if (both * both > 0.25 * 0.25 * off2 * u2)
    wrong(LAST, "has noise that follows the disturbance")
}

# The mode after each step follows from the mode before, the temperature and the fault. Off at 4
# degrees before the first rate, it has switched on or stuck off by the end of step 0.
function check_thermostat(   k, before, due) {
  before = "off"
  for (k = 0; k <= LAST; k++) {
    due = before
    if (before == "off" && x[DAY, k] < 10)
      due = fault == "stuck_off" && k >= fault_step ? "stuck_off" : "on"
    if (before == "on" && x[DAY, k] >= 17)
      due = fault == "stuck_on" && k >= fault_step ? "stuck_on" : "off"
    if (thermostat[DAY, k] != due)
      wrong(k, "thermostat is not " due)
    before = due
  }
}

function check_window(   k, due) {
  for (k = 0; k <= LAST; k++) {
    due = open_at != "" && k >= open_at && k < close_at
    due = due || (fault == "window_open" && k >= fault_step)
    if (window[DAY, k] != (due ? "open" : "closed"))
      wrong(k, "window is " window[DAY, k])
  }
}

# The true state departs from the healthy day where the fault strikes, and the measure at the step
# after, but at once where the thermostat is stuck before the first rate; a fault of the sensor
# shows at once, and in the measure alone. -1 stands for never.
function check_departure(   strikes) {
  strikes = fault ~ /^stuck_/ ? switch_due() : fault == "window_open" ? fault_step : -1
  strikes = open_at != "" ? open_at : strikes
  expect("true state", first_difference(truth), strikes)
  if (sensor_fault)
    expect("measure", first_difference(rate), fault == "sensor_noise" ? 0 : fault_step)
  else
    expect("measure", first_difference(rate), \
      strikes < 0 || starts_stuck(DAY) ? strikes : strikes + 1)
}

# The first step from fault_step on at which the healthy thermostat switches to the other mode than
# the one it is to stick in.
function switch_due(   k) {
  thermostat[HEALTHY, -1] = "off"
  for (k = fault_step; k <= LAST; k++)
    if (thermostat[HEALTHY, k] != thermostat[HEALTHY, k - 1] && \
        "stuck_" thermostat[HEALTHY, k] != fault)
      return k
  return -1
}

function first_difference(column,   k) {
  for (k = 0; k <= LAST; k++)
    if (column[DAY, k] != column[HEALTHY, k])
      return k
  return -1
}

function expect(what, found, due) {
  if (found != due)
    wrong(found, what " departs from the healthy day here, not at " due)
}

# Where the mean disturbance holds the exchange in balance, 0.05 (x - 4) = sun gives 4 + 20 sun,
# which is 7 for 0.15, and 0.05 (20 - x) = -sun gives 20 + 20 sun, 23; the wobble moves either by
# less than 1.
function check_stuck(   k, rest) {
  rest = (fault == "stuck_off" ? 4 : 20) + 20 * sun
  if (!near(x[DAY, LAST], rest, 1))
    wrong(LAST, "does not come to rest near " rest)
  for (k = switch_due(); k <= LAST; k++)
    if (fault == "stuck_off" ? x[DAY, k] >= 10 : x[DAY, k] < 17)
      wrong(k, "crosses a threshold that it cannot reach")
}

function check_crossings(   k, falls, rises) {
  for (k = 1; k <= LAST; k++) {
    falls += x[DAY, k - 1] >= 10 && x[DAY, k] < 10
    rises += x[DAY, k - 1] < 17 && x[DAY, k] >= 17
  }
  if (falls < 3 || rises < 3)
    wrong(LAST, "has gone under 10 only " falls + 0 " times, over 17 only " rises + 0)
}

function near(a, b, tolerance) {
  return a - b <= tolerance && b - a <= tolerance
}

# One cause often spoils all later steps: the first findings tell enough.
function wrong(k, what) {
  bad = 1
  if (findings++ < 5)
    print name ": step " k ": " what
}
END_OF_FACTS

# facts FILE [PARAMETER=VALUE]...: the day of that file beside the committed healthy one.
facts() {
  file=$1
  shift
  facts_beside "$room/obs/healthy.obs" "$room/obs/$file.obs" name="$file" "$@"
}

facts_beside() {
  healthy=$1
  day=$2
  shift 2
  for parameter; do
    shift
    set -- "$@" -v "$parameter"
  done
  awk "$@" -f "$tmp/facts.awk" "$healthy" "$day" >&2 || complain "$day does not tell its story"
}

check_stories() {
  facts healthy
  facts window_command open_at=30 close_at=60
  facts window_open fault=window_open fault_step=70
  facts stuck_off fault=stuck_off fault_step=0
  facts stuck_on fault=stuck_on fault_step=10
  facts sensor_noise fault=sensor_noise
  facts sensor_bias fault=sensor_bias fault_step=50
  facts sensor_dead fault=sensor_dead fault_step=50
  plant sun=0.06 >"$tmp/healthy_late"
  facts_beside "$tmp/healthy_late" "$tmp/healthy_late" name="healthy at sun 0.06" sun=0.06
  facts_beside "$tmp/healthy_late" "$room/obs/stuck_off_late.obs" name=stuck_off_late sun=0.06 \
    fault=stuck_off fault_step=40
}

# The steps that the README gives, which the facts above take from the healthy day instead.
check_true_steps() {
  while read -r file step mode; do
    first=$(awk -v mode="$mode" '$0 ~ mode { print substr($3, 3); exit }' "$room/obs/$file.obs")
    [ "$first" = "$step" ] || complain "$file shows $mode first at ${first:-no step}, not at $step"
  done <<END_OF_STEPS
window_open 70 window=open
stuck_on 22 thermostat=stuck_on
stuck_off 0 thermostat=stuck_off
stuck_off_late 46 thermostat=stuck_off
END_OF_STEPS
}

# Any seed makes a healthy day, each its own; the largest shows an inexact product.
check_seeds() {
  for seed in 2 12345 2147483646; do
    plant seed=$seed >"$tmp/seed_$seed"
    facts_beside "$tmp/seed_$seed" "$tmp/seed_$seed" name="seed $seed"
  done
  [ "$(head -qn 1 "$tmp"/seed_* "$room/obs/healthy.obs" | sort -u | wc -l)" -eq 4 ] ||
    complain "two seeds make the same first line"
}

# The generator, against the check that Park and Miller publish with it: from seed 1, the number
# 10000 is 1043618065. Ten being thrown away, step 0 takes number 11 and step 9989 that one.
check_generator() {
  plant steps=9989 | tail -n 2 | awk '
    NR == 1 { x = substr($4, 3); drive = $5 == "thermostat=on" ? 20 : 4 }
    NR == 2 { off = $1 - 0.05 * (drive - x) - (0.15 + 0.05 * (2 * 1043618065 / 2147483647 - 1)) }
    END { exit !(NR == 2 && off < 0.000003 && off > -0.000003) }' ||
    complain "the generator is not the minimal standard one"
}

check_scenario() {
  printf '30 Command room.cmdin=open\n60 Command room.cmdin=close\n' |
    diff -u - "$room/inp/window_command.scn" || complain "the scenario has other commands"
}

# The console scripts. A script that does not end in quit would keep the program waiting for ever,
# and one that cannot be run as its first line says, or draws nothing, is no example.

check_script() {
  name=$(basename "$1" .tavro)
  [ "$(tail -n 1 "$1")" = quit ] || complain "$name.tavro does not end in quit"
  # Options stand before the files.
  command=$(head -n 1 "$1" | sed 's/^# tavro-exec \(--[^ ]* \)*/# tavro-exec /')
  if echo "$command" |
    grep -qx "# tavro-exec [^ ]* ${name}[.]disp\( [^ ]*\)\{0,1\} < ${name}[.]tavro"; then
    # shellcheck disable=SC2086
    set -- "$1" $command
    [ -f "$room/obs/$4" ] || complain "$name.tavro takes obs/$4, which is not there"
    [ "$6" = "<" ] || [ -f "$room/inp/$6" ] ||
      complain "$name.tavro takes inp/$6, which is not there"
  else
    complain "$name.tavro begins with '$command'"
  fi
  check_drawing "$1"
}

check_drawing() {
  drawn=$(sed -n 's/^gnuplot //p' "$1")
  # Or another script runs it, and draws both.
  [ -n "$drawn" ] || grep -q "< $name[.]tavro" $(ls "$room"/*.tavro | grep -v "/$name[.]tavro") ||
    complain "$name.tavro draws nothing"
  for script in $drawn; do
    [ -f "$room/$script" ] || complain "$name.tavro draws with $script, which is not there"
  done
}

check_scripts() {
  for script in "$room"/*.tavro; do
    check_script "$script"
  done
  for day in "$room"/obs/*.obs; do
    [ -f "$room/$(basename "$day" .obs).tavro" ] || complain "$day has no console script"
  done
}

# The table behind the pictures. Step 1 is inside the second candidate alone, step 2 beyond both,
# step 3 on a bound that the display file rounds to 6 digits: 1.23457 for 1.234567.

cat >"$tmp/table.obs" <<'END_OF_MEASURES'
0.5   # k=0 x=4.0000 thermostat=on window=closed
0.5
-1   # k=2 x=5.0000 thermostat=on window=closed
1.234567   # k=3 x=5.5000 thermostat=on window=closed
END_OF_MEASURES
printf '%s \n' '0.5 0.5 4 4' '0 0.4 1 2 0.4 0.6 3 4' '0 1 1 2 0 1 3 4' \
  '1.23457 2 1 2 3 4 5 6' >"$tmp/whole.disp"

# check_table WHAT DISPLAY-FILE: the table of that file is the one on standard input.
check_table() {
  for awk in awk mawk gawk; do
    if command -v $awk >/dev/null; then
      $awk -f "$room/pictures.awk" "$tmp/table.obs" "$2" >"$tmp/table.by_$awk"
    fi
  done
  cat >"$tmp/table.due"
  for made in "$tmp"/table.by_*; do
    diff "$tmp/table.due" "$made" >&2 || complain "the table of $1 is another (${made##*_})"
  done
}

# cut_display COUNT: as many bytes as a run that was stopped might have left.
cut_display() {
  head -c "$1" "$tmp/whole.disp" >"$tmp/cut.disp"
}

check_tables() {
  check_table "a whole run" "$tmp/whole.disp" <<'END_OF_TABLE'
0 0.5 4.0000 0 0.5 0.5 4 4 0.5 0.5 4 4
1 0.5 NaN 0 0 0.4 1 2 0.4 0.6 3 4
2 -1 5.0000 1 0 1 1 2 0 1 3 4
3 1.234567 5.5000 0 1.23457 2 1 2 3 4 5 6
END_OF_TABLE
  # The line of step 3 is bytes 54 to 76: 65 ends it in the first candidate, 67 behind that
  # candidate, and 74 where the last number might go on.
  for bytes in 65 67 74; do
    cut_display $bytes
    check_table "$bytes bytes" "$tmp/cut.disp" <<'END_OF_TABLE'
0 0.5 4.0000 0 0.5 0.5 4 4 0.5 0.5 4 4
1 0.5 NaN 0 0 0.4 1 2 0.4 0.6 3 4
2 -1 5.0000 1 0 1 1 2 0 1 3 4
END_OF_TABLE
  done
  check_stopped
}

# Nothing, half of the first line, all of it, or three numbers more: no candidate, and all measures.
check_stopped() {
  for bytes in 0 6 13 21; do
    cut_display $bytes
    check_table "$bytes bytes" "$tmp/cut.disp" <<'END_OF_TABLE'
0 0.5 4.0000 0
1 0.5 NaN 0
2 -1 5.0000 0
3 1.234567 5.5000 0
END_OF_TABLE
  done
}

check_every_awk
check_refusals
check_sun_limits
head -n 101 "$room/obs/healthy.obs" >"$tmp/healthy_to_100"
check_steps
check_stories
check_true_steps
check_seeds
check_generator
check_scenario
check_scripts
check_tables
[ $failed -eq 0 ] && echo "plant_data_test: all good"
exit $failed
