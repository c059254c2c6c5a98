# Joins a measure file and the display file of a run into one table, for pictures.gp to draw.
#
# Usage: awk [-v per=candidate] -f pictures.awk obs/NAME.obs disp/NAME.disp
#
# One line per step, with the same number of columns in all lines:
#
#   step  measure  true temperature  outside  xd low  xd high  x low  x high  (again per candidate)
#
# With per=candidate the bounds alone, one candidate below the other with a blank line between, so
# that all bands can be drawn as one:
#
#   step  xd low  xd high  x low  x high
#
# The true temperature comes from the comment of the measure line. outside is 1 where the measure
# lies beyond the bounds of room.xd of every candidate, else 0. What is not known is NaN.
#
# Lines 2 and on of a display file are as wide as the candidates left at the end are many; the first
# has one candidate, the start that they all share, and is repeated for each.
#
# A display file that was cut short ends the table before the first line that is not whole: the
# program ends each line with a blank, so a number cut in two shows. It writes all lines but the
# first when a run ends, so a run that was stopped leaves that one at most. Then the table has no
# candidate, and goes on to the end of the measures.

BEGIN {
  EACH = 4          # numbers per candidate
  UNKNOWN = "NaN"
  # A display file rounds to 6 digits, which moves a bound by 5e-6 of itself at most: a measure that
  # is on the bound must not fall outside for that.
  ROUNDING = 0.000005
}

FILENAME == ARGV[1] {
  measure[FNR - 1] = $1
  truth[FNR - 1] = match($0, / x=[^ ]+/) ? substr($0, RSTART + 3, RLENGTH - 3) : UNKNOWN
  measures = FNR
  next
}

!whole() { exit }   # END still writes what came before

{
  width = NF
  bounds[rows++] = $0
}

END {
  if (rows < 2)
    rows = width = 0
  steps = rows > 0 ? rows : measures
  if (per == "candidate")
    write_candidates()
  else
    for (step = 0; step < steps; step++)
      write(step)
}

function whole() {
  return / $/ && NF % EACH == 0 && (rows < 2 || NF == width)
}

function write(step,   bound, i) {
  split(bounds[step], bound)
  printf "%d %s %s %d", step, known(measure, step), known(truth, step), outside(step, bound)
  for (i = 1; i <= width; i++)
    printf " %s", bound[number(step, i)]
  printf "\n"
}

# Each line is split once, so what a candidate gets is gathered over all steps.
function write_candidates(   lines, bound, c, i, step) {
  for (step = 0; step < steps; step++) {
    split(bounds[step], bound)
    for (c = 0; c < width / EACH; c++) {
      lines[c] = lines[c] step
      for (i = 1; i <= EACH; i++)
        lines[c] = lines[c] " " bound[number(step, c * EACH + i)]
      lines[c] = lines[c] "\n"
    }
  }
  for (c = 0; c < width / EACH; c++)
    printf "%s\n", lines[c]
}

# Where the line of a step has the number that column i of the later lines goes on from.
function number(step, i) {
  return step > 0 ? i : (i - 1) % EACH + 1
}

function known(column, step) {
  return step < measures ? column[step] : UNKNOWN
}

function outside(step, bound,   i) {
  if (step >= measures || width == 0)
    return 0
  for (i = 1; i <= width; i += EACH)
    if (within(measure[step], bound[number(step, i)], bound[number(step, i + 1)]))
      return 0
  return 1
}

function within(value, low, high) {
  return value >= low - ROUNDING * size(low) && value <= high + ROUNDING * size(high)
}

function size(value) {
  return value < 0 ? -value : value
}
