' tables.bas: a multiplication table and a triangle of stars.
' Shows labels, GOSUB and RETURN (the subroutine right-aligns a number), nested FOR loops whose inner
' limit follows the outer counter, and end before the subroutines so the program does not run into them.
' Jumps go to labels written as $name, never to line numbers.
' Run it: make run ARGS="examples/tables.bas"
print "    |   1   2   3   4   5   6   7   8   9"
print "----+------------------------------------"
for irow=1 to 9
inumber=irow
gosub $pad
sline=spad + "|"
for icolumn=1 to 9
inumber=irow*icolumn
gosub $pad
sline=sline+spad
next
print sline
next
print
for irow=1 to 5
sline=""
for icolumn=1 to irow*2-1
sline=sline+"*"
next
gosub $centre
next
end

' spad: inumber as text, right-aligned in four columns.
$pad
spad="" + inumber
$pad_more
if len(spad)>=4 then $pad_done
spad=" " + spad
goto $pad_more
$pad_done
return

' Prints sline centred in 40 columns.
$centre
for i=1 to (40-len(sline))/2
sline=" " + sline
next
print sline
return
