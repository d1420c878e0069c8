' catch.bas: catch the falling stars in your basket.
' Shows a game loop driven by inkey(), which never waits: it gives the oldest key pressed, or 0 when
' there is none, so the stars keep falling whether you press keys or not.
' Keys: the left and right arrows (or j and l) move the basket, q quits. Three missed stars end the game.
' Run it: make run ARGS="examples/catch.bas"   (in the window or the terminal)
cls
print "CATCH"
print "Catch the falling stars: the arrows (or j and l) move the basket, q quits."
sleep 500
print "Press any key to start."
' How long the player takes to press a key seeds the random numbers: a different game every time.
iwait=0
$wait_start
if inkey()<>0 then $start
iwait=iwait+1
sleep 10
goto $wait_start
$start
randomize iwait
ibasket=38
iscore=0
imissed=0
gosub $new_star
$tick
ik=inkey()
if ik=113 then $quit
if ik=29 or ik=106 then $left
if ik=28 or ik=108 then $right
goto $fall
$left
ibasket=ibasket-2
if ibasket<0 then $right
goto $fall
$right
ibasket=ibasket+2
if ibasket>76 then $left
$fall
istar_y=istar_y+1
if istar_y<27 then $draw
' The star has reached the basket's row.
if istar_x>=ibasket and istar_x<=ibasket+2 then $caught
imissed=imissed+1
goto $next_star
$caught
iscore=iscore+1
$next_star
if imissed>=3 then $quit
gosub $new_star
$draw
cls
print "Score " + iscore + "   missed " + imissed + " of 3   (q quits)";
locate istar_x, istar_y
print "*";
locate ibasket, 27
print "\_/";
sleep 50
goto $tick

$new_star
istar_x=rnd()*77
istar_y=1
return

$quit
cls
print "You caught " + iscore + " stars and missed " + imissed + "."
