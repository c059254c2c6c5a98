#!/bin/sh
# Runs the console scripts of examples/room with the program, in a copy of the directory, and checks
# that every picture is drawn and that the drawings say what happened.
#
# Usage: pictures_test.sh PROGRAM ROOM-DIRECTORY
# Exit status 1 when anything is wrong, with a line for each finding.
set -u
LC_ALL=C
export LC_ALL

TAVRO_EXEC=$1
export TAVRO_EXEC
tmp=$(mktemp -d) || exit 1
trap 'rm -rf "$tmp"' EXIT
cp -R "$2" "$tmp/room" && cd "$tmp/room" || exit 1
rm -f disp/*.disp plots/*.* log/*.* htraj*.dot

failed=0
complain() {
  echo "pictures_test: $*" >&2
  failed=1
}

# Every script draws its two pictures, but the day that both sets of rules follow, which is one, and the one that explains its candidate, which runs last, the
# history of that too.
check_names() {
  names=$(for script in *.tavro; do basename "$script" .tavro; done | grep -Ev '_(explained|classic)$')
  names="$names stuck_on_explained"
  # shellcheck disable=SC2086  # a list of names
  ./draw $names >drawn 2>complaints || complain "draw ended with status $?: $(cat complaints)"
  for name in $names; do
    case $name in
    long_day) views='long_day' ;;
    simulate) views='simulate_single_xd simulate_single_x simulate_multi_xd simulate_multi_x' ;;
    *) views="${name}_xd ${name}_x" ;;
    esac
    for view in $views; do
      grep -q "/plots/$view\.[ps][nv]g\$" drawn || complain "$name: no picture $view is told"
    done
  done
  grep -q '/plots/stuck_on_explained_candidate0.svg$' drawn || complain "no graph of a candidate"
  while read -r picture; do
    [ -s "$picture" ] || complain "$picture is empty"
  done <drawn
  if grep -il 'warning:' log/*.err; then
    complain "a drawing warned, see above"
  fi
}

# The one candidate left after the stuck thermostat was found, from the graph itself: mode names are
# those of the model, the failure is coloured, the modes that stay are dotted.
check_candidate() {
  grep -q '^	thermostat_on4 -> thermostat_stuck_on5 \[ color = coral \];$' htraj0.dot ||
    complain "the graph shows no failure of the thermostat"
  grep -q 'room_closed.* \[style = dotted \];$' htraj0.dot || complain "the room does not stay closed"
  [ ! -e htraj1.dot ] || complain "more than one candidate is left"
  grep -q '>stuck_on</text>' plots/stuck_on_explained_candidate0.svg ||
    complain "the picture does not show the mode stuck_on"
}

# From the step after the fault was found, at 27, every measure lies within the bounds that are
# drawn: the fourth column of the table behind the picture marks those outside.
check_bounds() {
  awk -f pictures.awk obs/stuck_on.obs disp/stuck_on_explained.disp >table
  [ "$(wc -l <table)" -eq 121 ] || complain "the table has not a line for each of the 121 steps"
  awk '$1 > 27 && $4 != 0 { bad = 1 } END { exit bad }' table ||
    complain "a measure lies outside the bounds of the diagnosed candidate"
}

check_names
check_candidate
check_bounds
exit "$failed"
