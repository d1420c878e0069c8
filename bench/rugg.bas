' Mixed loop in the manner of Rugg and Feldman's seventh test: arithmetic, a GOSUB and an inner
' loop over an array, 200 000 turns of a loop closed by IF
dim rm(5)
ik=0
$again
ik=ik+1
ra=ik/2.0*3+4-5
gosub $sub
for il=1 to 5
rm(il)=ra
next
if ik<200000 then $again
ires=rm(5)
print ires
end
$sub
return
