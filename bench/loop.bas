' Counted loop: ten million turns of an empty FOR loop, then a million with an addition
for i=1 to 10000000
next
isum=0
for i=1 to 1000000
isum=isum+i mod 7
next
print isum
