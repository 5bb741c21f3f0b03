# Four pictures of `data`: the cost of a value against what grows.
set terminal pngcairo size 900,640 font "DejaVu Sans,10"
set multiplot layout 2,2
set logscale x
set yrange [0:*]
set grid
set ylabel "ns per value"
unset key
labels = "channels rate duration window"
titles = "'channels (256 Hz, 10 s windows)' 'sampling rate in Hz (16 channels)' 'duration in s (8 channels, 128 Hz)' 'window in s (32 channels, 256 Hz)'"
do for [i=1:4] {
  set xlabel word(titles, i)
  plot sprintf("< grep '^%s ' %s", word(labels, i), data) using 2:3 with linespoints pt 7 lc rgb "#205080"
}
unset multiplot
