' GOSUB and RETURN: a million calls of a small subroutine
itotal=0
for i=1 to 1000000
gosub $add
next
print itotal
end
$add
itotal=itotal+i mod 3
return
