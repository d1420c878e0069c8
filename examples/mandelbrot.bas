' mandelbrot.bas: the Mandelbrot set drawn in pixels.
' Shows set_pixel and update_scr: pixels are drawn into the picture at once but appear on the screen
' only at update_scr (here after every eighth row) or when the program ends. Reals are written with a
' point (0.5, never .5); an integer variable takes a real's whole part.
' Run it: make run ARGS="examples/mandelbrot.bas"   (a few seconds; Control+C breaks it)
cls
dim ipalette(16)
for i=0 to 15
ipalette(i)=rgb(i*4, i*4-i*i/8, 20+i*2)
next
' 320 x 240 points, each drawn as 2 x 2 pixels; black where the point stays in the set.
for iy=0 to 239
rci=-1.2+iy*0.01
for ix=0 to 319
rcr=-2.2+ix*0.01
rzr=0.0
rzi=0.0
icount=0
$iterate
rt=rzr*rzr-rzi*rzi+rcr
rzi=2.0*rzr*rzi+rci
rzr=rt
icount=icount+1
if icount<48 and rzr*rzr+rzi*rzi<4.0 then $iterate
icolour=0
if icount=48 then $plot
icolour=ipalette(icount/3)
$plot
set_pixel ix*2, iy*2, icolour
set_pixel ix*2+1, iy*2, icolour
set_pixel ix*2, iy*2+1, icolour
set_pixel ix*2+1, iy*2+1, icolour
next
if iy mod 8 = 7 then $show
goto $row_done
$show
update_scr
$row_done
next
locate 0, 0
print "Mandelbrot set";
