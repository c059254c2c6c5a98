# A small plant that stands in for the real room: it makes the measure files that a user of
# tavro-exec would bring. It is physics of its own and shares nothing with the program's prediction,
# so that a fault of one cannot hide in the other.
#
# One line per step k = 0, 1, ..., steps: the measured rate of change of the room temperature, which
# is all that the program reads, then the true state after the step, as a comment for whoever checks
# the program against it:
#
#   0.950000   # k=0 x=4.0000 thermostat=on window=closed
#
# Parameters, each given as -v name=value:
#   steps       number of the last step; the file has one line more (default 240)
#   seed        1 .. 2147483646, picks the day's disturbances (default 1)
#   sun         mean of the uncertain term of the rate, 0.05 .. 0.25 (default 0.15)
#   fault       none, stuck_off, stuck_on, window_open, sensor_bias, sensor_dead, sensor_noise
#   fault_step  first step at which the fault can strike (default 50); a thermostat with 0 can stick
#               before the first rate; sensor_noise is there from 0
#   bias        what sensor_bias adds to the measured rate (default 0.5)
#   noise       sensor_noise adds at most this much, either way, to the measured rate (default 0.02)
#   open_at, close_at   steps of the window commands, -1 for never (default -1)
#
# A parameter that cannot be used is told on the error stream, and the exit status is 1.
#
# Invariants. The same parameters give the same bytes under every awk: the noise comes from a
# generator in exact integers held in doubles, since rand() differs from one awk to the next. Every
# step takes exactly one number from the stream "room" whatever the fault, and the sensor has a
# stream of its own, so a day with a fault is the healthy day of the same seed and sun until the fault
# acts.
# Run it with LC_ALL=C: an awk that follows the locale could write a decimal comma.

BEGIN {
  read_parameters()
  start_day()
  for (step = 0; step <= steps; step++) {
    advance(step)
    switch_thermostat(step)
    switch_window(step)
    printf "%.6f   # k=%d x=%.4f", measured(step), step, x
    printf " thermostat=%s window=%s\n", thermostat, window
  }
}

# The plant.

function start_day() {
  HEATER = 20; OUTSIDE = 4
  LOW = 10; HIGH = 17
  CLOSED = 0.05; OPEN = 0.0002   # exchange coefficients, per step
  WOBBLE = 0.05                  # the most that the uncertain term departs from its mean, sun

  x = 4
  thermostat = "off"
  switch_thermostat(0)           # at 4 the room is below LOW: it decides before the first rate
  window = "closed"
  start_stream("room", seed)
  # Any other start would do; the product stays below 2^47, exact in a double.
  start_stream("sensor", (48271 * seed) % MODULUS)
}

# Brings x to step k and sets the rate of step k, which moves x at step k + 1 only. The rate answers
# to the temperature of the step before, and to the modes that the step before ended with. The first
# step has none before it: it takes the initial state.
function advance(k,   before) {
  before = x
  if (k > 0)
    x = x + rate
  rate = exchange() * (drive() - before) + sun + WOBBLE * draw("room")
}

function exchange() {
  return window == "open" ? OPEN : CLOSED
}

function drive() {
  return thermostat == "on" || thermostat == "stuck_on" ? HEATER : OUTSIDE
}

# A stuck thermostat is noticed where it ought to switch: until then it works, and from then on no
# rule below applies to it any more.
function switch_thermostat(k) {
  if (thermostat == "off" && x < LOW)
    thermostat = struck(k, "stuck_off") ? "stuck_off" : "on"
  else if (thermostat == "on" && x >= HIGH)
    thermostat = struck(k, "stuck_on") ? "stuck_on" : "off"
}

function switch_window(k) {
  if (k == open_at || (fault == "window_open" && k == fault_step))
    window = "open"
  if (k == close_at)
    window = "closed"
}

# What the sensor shows of the rate. The thermostat feels the room itself, so a fault of this sensor
# leaves the true state as it is.
function measured(k) {
  if (struck(k, "sensor_dead"))
    return 0
  if (struck(k, "sensor_bias"))
    return rate + bias
  if (fault == "sensor_noise")
    return rate + noise * draw("sensor")
  return rate
}

function struck(k, name) {
  return fault == name && k >= fault_step
}

# The noise: the minimal standard generator, x = 16807 x mod (2^31 - 1), of Park and Miller, "Random
# number generators: good ones are hard to find", CACM 31(10), 1988. The product stays below 2^46.

# The first numbers after a small seed are small too, so a few are thrown away.
function start_stream(name, first,   i) {
  stream[name] = first
  for (i = 0; i < 10; i++)
    draw(name)
}

# Between -1 and 1, both left out.
function draw(name) {
  stream[name] = (16807 * stream[name]) % MODULUS
  return 2 * (stream[name] / MODULUS) - 1
}

# The parameters.

function read_parameters() {
  MODULUS = 2147483647
  steps = whole("steps", steps, 240, 0, 1000000)
  seed = whole("seed", seed, 1, 1, MODULUS - 1)
  fault_step = whole("fault_step", fault_step, 50, 0, 1000000)
  open_at = whole("open_at", open_at, -1, -1, 1000000)
  close_at = whole("close_at", close_at, -1, -1, 1000000)
  # The model takes the uncertain term to lie within 0 .. 0.3, so the wobble has to fit in there.
  sun = decimal("sun", sun, 0.15)
  if (sun < 0.05 || sun > 0.25)
    refuse("sun", sun)
  bias = decimal("bias", bias, 0.5)
  noise = decimal("noise", noise, 0.02)
  fault = fault == "" ? "none" : fault
  if (fault !~ /^(none|stuck_off|stuck_on|window_open|sensor_bias|sensor_dead|sensor_noise)$/)
    refuse("fault", fault)
}

function whole(name, value, otherwise, least, most) {
  if (value == "")
    return otherwise
  if (value !~ /^-?[0-9]+$/ || value + 0 < least || value + 0 > most)
    refuse(name, value)
  return value + 0
}

function decimal(name, value, otherwise) {
  if (value == "")
    return otherwise
  if (value !~ /^-?[0-9]+(\.[0-9]+)?$/)
    refuse(name, value)
  return value + 0
}

function refuse(name, value) {
  print "plant.awk: cannot use " name "=" value > "/dev/stderr"
  exit 1
}
