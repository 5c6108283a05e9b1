#!/bin/sh
# drive_window.sh drag|look PROGRAM ARGUMENT... runs a program with a window on the screen of DISPLAY,
# drags in it and turns the wheel, or leaves it as it is, presses Escape, and ends as the program ends.
what=$1
shift
"$@" &
program=$!
window=$(timeout 60 xdotool search --sync --onlyvisible --pid $program --name "Orvane Core" | head -n 1)
if [ -z "$window" ]; then
  kill $program
  exit 98
fi
xdotool mousemove --window "$window" 400 300
if [ "$what" = drag ]; then
  xdotool mousedown 1
  for _ in 1 2 3 4 5 6 7 8; do
    xdotool mousemove_relative -- 15 4
    sleep 0.05
  done
  xdotool mouseup 1 click 4 click 4
fi
xdotool key Escape
left=600
while kill -0 $program 2>/dev/null; do
  left=$((left - 1))
  if [ $left = 0 ]; then
    kill $program
    exit 99
  fi
  sleep 0.1
done
wait $program
