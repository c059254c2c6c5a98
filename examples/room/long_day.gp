# The picture of long_day.tavro: the true temperature and the hull of the bounds of all candidates,
# by the classic rules and by the sharp ones, on one scale.
CLASSIC = 0xE69F00
SHARP = 0x0072B2

hull = "LC_ALL=C awk '{ lo = $3; hi = $4; for (i = 7; i <= NF; i += 4) " \
     . "{ if ($i < lo) lo = $i; if ($(i + 1) > hi) hi = $(i + 1) } print NR - 1, lo, hi }' disp/"
truth = "sed 's/.*k=\\([0-9]*\\) x=\\([^ ]*\\).*/\\1 \\2/' obs/long_day.obs"

if (strstrt(GPVAL_TERMINALS, 'pngcairo') > 0) {
  set terminal pngcairo size 1200, 620 font 'Sans,12' noenhanced
  picture = 'plots/long_day.png'
} else {
  set terminal svg size 1200, 620 font 'Sans,12' noenhanced background 'white'
  picture = 'plots/long_day.svg'
}
set output picture
set title 'A healthy day of 480 steps, threshold 3: what each set of rules knows of the temperature'
set xlabel 'step'
set ylabel 'room.x in degrees'
set yrange [-40:80]
set key top left
set grid
plot '< '.hull.'long_day_classic.disp' using 1:2:3 with filledcurves \
       fillcolor rgb CLASSIC fillstyle transparent solid 0.45 title 'bounds, classic rules', \
     '< '.hull.'long_day.disp' using 1:2:3 with filledcurves \
       fillcolor rgb SHARP fillstyle transparent solid 0.6 title 'bounds, sharp rules', \
     '< '.truth using 1:2 with lines linecolor rgb 0 linewidth 2 title 'true temperature'
set output
print picture
