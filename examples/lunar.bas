' lunar.bas: land on the Moon, in the manner of the lunar landing games of 1970s BASIC books.
' Shows real arithmetic beside integers (an integer variable keeps a real's whole part, and reals print
' with six decimals, so the table prints integer copies), sqrt, and a number read key by key.
' Every 10 seconds you choose how much fuel to burn, 0 to 30 units: 16 units hold your speed, more
' slows you down. Touch down slower than 3 m/s.
' Keys: digits, back space, Enter; q gives up.
' Run it: make run ARGS="examples/lunar.bas"
ralt=2000.0
rspeed=50.0
rfuel=250.0
itime=0
print "LUNAR LANDING: you are 2000 m above the Moon, falling at 50 m/s."
$turn
ialt=ralt
ispeed=rspeed
ifuel=rfuel
print "Time " + itime + " s, height " + ialt + " m, speed " + ispeed + " m/s, fuel " + ifuel
print "Burn (0 to 30)? ";
gosub $read_number
if iquit then $give_up
rburn=inumber
if rburn<=30 then $check_fuel
rburn=30.0
$check_fuel
if rburn<=rfuel then $fly
rburn=rfuel
$fly
' Down is positive: the Moon pulls with 1.6 m/s2, each unit burnt pushes back with 0.1 m/s2.
raccel=1.6-rburn*0.1
rdrop=rspeed*10.0+raccel*50.0
if rdrop>=ralt then $touch_down
ralt=ralt-rdrop
rspeed=rspeed+raccel*10.0
rfuel=rfuel-rburn
itime=itime+10
goto $turn

' The height reaches 0 during this turn: solve height = speed*t + accel*t*t/2 for the time t.
$touch_down
rt=ralt/rspeed
if raccel*raccel<0.000001 then $landed
rt=(sqrt(rspeed*rspeed+2.0*raccel*ralt)-rspeed)/raccel
$landed
rspeed=rspeed+raccel*rt
itime=itime+rt
ispeed=rspeed
print "Touch down after " + itime + " s at " + rspeed + " m/s."
if rspeed<3.0 then $perfect
if rspeed<10.0 then $rough
print "Crash! The crater is " + ispeed/3 + " m deep."
end
$perfect
print "A perfect landing."
end
$rough
print "A rough landing, but you can walk away."
end
$give_up
print "You gave up at " + ialt + " m."
end

' Reads up to two digits into inumber until Enter; back space takes the last digit back, q sets iquit.
$read_number
inumber=0
idigits=0
iquit=0
$read_key
ik=inkey()
if ik=0 then $read_idle
if ik=13 then $read_done
if ik=113 then $read_quit
if ik=8 then $read_back
if ik<48 or ik>57 or idigits>=2 then $read_key
inumber=inumber*10+ik-48
idigits=idigits+1
print chr(ik);
goto $read_key
$read_back
if idigits=0 then $read_key
inumber=inumber/10
idigits=idigits-1
print chr(8);
goto $read_key
$read_idle
sleep 10
goto $read_key
$read_quit
iquit=-1
$read_done
print
return
