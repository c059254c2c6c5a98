# Draws the two display variables of a run, room.xd and room.x, into plots/NAME_xd.png and
# plots/NAME_x.png, and prints the names of the pictures on the error stream: there they cannot fall
# into the middle of a line that the program still holds back. Without pngcairo they are SVG.
#
# To be loaded, in the directory of the measures, by a script that has set
#
#   name      of the pictures
#   story     what happened, for the title
#   events    steps of the true events, as words, and
#   labels    a word for each of them: a text of several words stands in double quotes
#   day       the measure file is obs/DAY.obs; NAME if not set
#   display   the display file is disp/DISPLAY.disp; NAME if not set
#
# Several candidates often have the same bounds. All bands have one colour, let through, so that
# what many candidates agree on is darker. Colours are those of Okabe and Ito, "Color universal
# design", 2008, told apart by colour-blind people too; marks differ in shape as well.

BAND = 0x56B4E9
EDGE = 0x0072B2
OUTSIDE = 0xD55E00
EVENT = 0x009E73
GREY = 0x707070

if (!exists('day')) day = name
if (!exists('display')) display = name
measures_file = 'obs/'.day.'.obs'
display_file = 'disp/'.display.'.disp'

do for [file in measures_file.' '.display_file] {
  if (system('test -r '.file.' && echo yes') ne 'yes') {
    print 'pictures.gp: no file '.file.': run the example first'
    exit status 1
  }
}

table(options) = system('LC_ALL=C awk '.options.' -f pictures.awk '.measures_file.' '.display_file)
set print $steps
print table('')
set print $candidates
print table('-v per=candidate')
set print

stats $steps using 1 nooutput
last = STATS_max
candidates = (STATS_columns - 4) / 4
any_candidate = candidates > 0 ? 1 : 0

if (strstrt(GPVAL_TERMINALS, 'pngcairo') > 0) {
  set terminal pngcairo size 1200, 620 font 'Sans,12' noenhanced
  suffix = 'png'
} else {
  set terminal svg size 1200, 620 font 'Sans,12' noenhanced background 'white'
  suffix = 'svg'
}

# The opacity of one of n bands that together leave a third of the ground below them, but no less
# than 0.04: of a fainter one the rounding to bytes would change the colour.
share(n) = n > 0 ? 1 - 0.33 ** (1.0 / n) : 1
band_opacity(n) = share(n) > 0.04 ? share(n) : 0.04
edge_opacity(n) = n > 10 ? 0.1 : 0.5
veil(colour, a) = int(255 * (1 - a)) * 0x1000000 + colour
# A bound can be as large as a number gets, which no axis can map: beyond 1000 all are alike.
fence(v) = v > 1000 ? 1000 : v < -1000 ? -1000 : v
low(variable) = fence(column(2 + 2 * variable))
high(variable) = fence(column(3 + 2 * variable))
only_if(flag, v) = flag ? v : NaN

band = veil(BAND, band_opacity(candidates))
edge = veil(EDGE, edge_opacity(candidates))
bounds_key = candidates == 0 ? 'no bounds: the run was stopped' : \
  candidates == 1 ? 'bounds of the one candidate left' : \
  sprintf('bounds of the %d candidates left (darker: more agree)', candidates)

set title name.': '.story
set xrange [0 : last > 0 ? last : 1]
set xtics out nomirror
set ytics out nomirror
set border 3
set grid ytics lc rgb '#E0E0E0' lt 1
set key at screen 0.5, 0.015 bottom center vertical maxrows 2 Left reverse samplen 2 width -4
set bmargin at screen 0.2
set xlabel 'time (steps)' offset 0, 0.3
set rmargin 4

do for [i = 1 : words(events)] {
  set arrow from first word(events, i), graph 0 to first word(events, i), graph 1 \
    nohead front lw 1.5 dt 3 lc rgb EVENT
  # In two rows, since events may lie close together.
  set label word(labels, i) at first word(events, i), graph 0.97 - 0.05 * ((i - 1) % 2) \
    offset 0.6, 0 front textcolor rgb EVENT
}

set output 'plots/'.name.'_xd.'.suffix
set ylabel 'rate of change room.xd (degrees per step)'
set yrange [-1.5 : 1.5]
plot \
  for [i = 1 : any_candidate] $candidates using 1:(low(0)):(high(0)) \
    with filledcurves fc rgb band notitle, \
  for [i = 1 : any_candidate] $candidates using 1:(low(0)) \
    with lines lw 1 lc rgb edge notitle, \
  for [i = 1 : any_candidate] $candidates using 1:(high(0)) \
    with lines lw 1 lc rgb edge notitle, \
  keyentry with filledcurves fc rgb veil(BAND, 0.67) title bounds_key, \
  $steps using 1:(only_if($4 == 0, $2)) with points pt 7 ps 0.6 lc rgb 'black' title 'measure', \
  $steps using 1:(only_if($4 == 1, $2)) with points pt 9 ps 1.4 lc rgb OUTSIDE \
    title 'measure outside all bounds'
unset output
print 'plots/'.name.'_xd.'.suffix

set output 'plots/'.name.'_x.'.suffix
set ylabel 'temperature room.x (degrees)'
set yrange [0 : 30]
set ytics add (10, 17)
plot \
  for [i = 1 : any_candidate] $candidates using 1:(low(1)):(high(1)) \
    with filledcurves fc rgb band notitle, \
  for [i = 1 : any_candidate] $candidates using 1:(low(1)) \
    with lines lw 1 lc rgb edge notitle, \
  for [i = 1 : any_candidate] $candidates using 1:(high(1)) \
    with lines lw 1 lc rgb edge notitle, \
  keyentry with filledcurves fc rgb veil(BAND, 0.67) title bounds_key, \
  10 with lines lw 1.2 dt 2 lc rgb GREY title 'thresholds 10 and 17', \
  17 with lines lw 1.2 dt 2 lc rgb GREY notitle, \
  $steps using 1:3 with lines lw 1.5 lc rgb 'black' title 'true temperature', \
  $steps using 1:(only_if($4 == 1, 0.7)) with points pt 9 ps 1.4 lc rgb OUTSIDE \
    title 'measure outside all bounds of room.xd'
unset output
print 'plots/'.name.'_x.'.suffix
