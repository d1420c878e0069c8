' Printing: 100 000 numbered lines, the console scrolling all the way
for i=1 to 100000
print "line " + i
next
