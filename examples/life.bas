' life.bas: Conway's Game of Life on a 40 x 20 board whose edges wrap around.
' Shows two-dimensional arrays (dim), four nested FOR loops, MOD, and subroutines. A glider crosses the
' board while a blinker blinks; after 32 generations the program ends.
' Run it: make run ARGS="examples/life.bas"
dim iboard(39,19), inext(39,19)
iboard(1,0)=1
iboard(2,1)=1
iboard(0,2)=1
iboard(1,2)=1
iboard(2,2)=1
iboard(30,10)=1
iboard(31,10)=1
iboard(32,10)=1
igen=0
gosub $draw
for igen=1 to 32
gosub $step
gosub $draw
sleep 40
next
end

$draw
cls
print "Generation " + igen
for iy=0 to 19
sline=""
for ix=0 to 39
if iboard(ix,iy) then $alive
sline=sline+"."
goto $drawn
$alive
sline=sline+"O"
$drawn
next
print sline
next
return

' A cell with three live neighbours is born; one with two or three lives on; every other dies.
$step
for iy=0 to 19
for ix=0 to 39
icount=-iboard(ix,iy)
for idy=-1 to 1
for idx=-1 to 1
icount=icount+iboard((ix+idx+40) mod 40, (iy+idy+20) mod 20)
next
next
inext(ix,iy)=0
if icount=3 then $born
if icount=2 and iboard(ix,iy)=1 then $born
goto $counted
$born
inext(ix,iy)=1
$counted
next
next
for iy=0 to 19
for ix=0 to 39
iboard(ix,iy)=inext(ix,iy)
next
next
return
