# shellcheck shell=sh
# To be read by the tests beside it, in an empty directory and with the program as $tavro.
mkdir inp obs disp
failed=0

fail() {
  echo "$1"
  failed=1
}

# answers PLANT LAST-TIME ARGUMENT...: what a detection with threshold 3 explains. A run that wrote no
# bounds to disp/d was none, and silence of it would say nothing.
answers() {
  plant=$1 end=$2
  shift 2
  rm -f disp/d htraj*.dot
  printf 'init\ndetect %s fault1 3\nquit\n' "$end" |
    "$tavro" console "$plant" "$@" 2>&1 >/dev/null | grep -aE '^answer|all trajs|rror|[Cc]an.t' | sort -u
  [ -s disp/d ] || echo "no run"
}

# named FILE: the failures of known kinds in answers, one a line, without their dates.
named() {
  sed -n 's/^answer: \(.*\) \(at\|between\) .*(rank 1.*/\1/p' "$1" | grep -vE ' (unknown|lost)$' | sort -u
}

# from FILE WHAT FIRST LAST: an answer begins WHAT within that time.
from() {
  sed -n "s/^answer: $2 \(at\|between [0-9.e+]* and\) \([0-9.e+]*\) .*/\2/p" "$1" |
    awk -v first="$3" -v last="$4" '$1 >= first && $1 <= last { found = 1 } END { exit !found }'
}
