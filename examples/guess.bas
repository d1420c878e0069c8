' guess.bas: guess the number from 1 to 99 that VEXIL thinks of.
' Shows reading a number typed key by key with inkey() (there is no input statement), a subroutine
' with GOSUB and RETURN, and randomize seeded with something that changes: how long you wait.
' Keys: digits, back space, Enter; q gives up.
' Run it: make run ARGS="examples/guess.bas"
cls
print "GUESS THE NUMBER"
sleep 500
print "Press any key to start."
iwait=0
$wait_start
if inkey()<>0 then $start
iwait=iwait+1
sleep 10
goto $wait_start
$start
randomize iwait
' rnd() runs from 0 to 1, both included; an integer variable keeps the whole part.
isecret=rnd()*99
isecret=isecret mod 99 + 1
itries=0
print "I think of a number from 1 to 99."
$ask
print "Your guess (q gives up): ";
gosub $read_number
if iquit then $give_up
if inumber<1 or inumber>99 then $out_of_range
itries=itries+1
if inumber<isecret then $too_low
if inumber>isecret then $too_high
print "Right! It is " + isecret + ", found in " + itries + " tries."
end
$too_low
print inumber + " is too low."
goto $ask
$too_high
print inumber + " is too high."
goto $ask
$out_of_range
print "From 1 to 99, please."
goto $ask
$give_up
print "It was " + isecret + "."
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
