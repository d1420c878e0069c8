' bounce.bas: a ball bouncing around the screen for 150 frames.
' Shows an animation made of cls, locate and sleep: every frame clears the text, puts the ball in its
' place and waits 20 milliseconds. cls clears the characters only; pixels would stay.
' Run it: make run ARGS="examples/bounce.bas"
ix=5
iy=3
idx=1
idy=1
for iframe=1 to 150
cls
print "frame " + iframe + " of 150";
locate ix, iy
print "O";
ix=ix+idx
iy=iy+idy
' The ball stays within columns 0 to 78 and rows 1 to 28: a character printed in the last column of the
' last row would scroll the screen.
if ix<=0 or ix>=78 then $turn_x
$check_y
if iy<=1 or iy>=28 then $turn_y
goto $wait
$turn_x
idx=-idx
goto $check_y
$turn_y
idy=-idy
$wait
sleep 20
next
locate 0, 29
print "The ball stopped at column " + ix + ", row " + iy + ".";
