' Mandelbrot set as text: 78 x 24 points, up to 100 iterations each, five times
for ipass=1 to 5
for iy=0 to 23
sline=""
rci=-1.2+iy*0.1
for ix=0 to 77
rcr=-2.2+ix*0.04
rzr=0.0
rzi=0.0
icount=0
$iterate
rt=rzr*rzr-rzi*rzi+rcr
rzi=2.0*rzr*rzi+rci
rzr=rt
icount=icount+1
if icount<100 and rzr*rzr+rzi*rzi<4.0 then $iterate
sline=sline+mid(" .,:;=+*#%@", icount/10, 1)
next
print sline
next
next
