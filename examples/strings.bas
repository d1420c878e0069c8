' strings.bas: a word taken apart and put together again.
' Shows the string functions: len, mid (positions count from 0), asc and chr (a character and its
' code), hex and bin, and + joining strings and numbers. Strings cannot be compared with = or <:
' compare their characters' codes, as the ROT13 part does with asc.
' Run it: make run ARGS="examples/strings.bas"
sword="VEXIL"
print "The word " + sword + " has " + len(sword) + " letters."
sback=""
for i=len(sword)-1 to 0 step -1
sback=sback+mid(sword, i, 1)
next
print "Backwards it reads " + sback + "."
for i=0 to len(sword)-1
sletter=mid(sword, i, 1)
icode=asc(sletter)
print sletter + " is code " + icode + ", hexadecimal " + hex(icode) + ", binary " + bin(icode)
next
' ROT13: every letter moves 13 places along the alphabet; twice gives the text back.
stext="Hello, World"
gosub $rot13
print stext + " in ROT13 is " + sresult + "."
stext=sresult
gosub $rot13
print "and back again: " + sresult + "."
end

$rot13
sresult=""
for i=0 to len(stext)-1
icode=asc(mid(stext, i, 1))
if icode>=65 and icode<=90 then $upper
if icode>=97 and icode<=122 then $lower
goto $add
$upper
icode=(icode-65+13) mod 26 + 65
goto $add
$lower
icode=(icode-97+13) mod 26 + 97
$add
sresult=sresult+chr(icode)
next
return
