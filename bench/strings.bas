' String building: strings of 200 characters joined one character at a time, 5000 times
for ipass=1 to 5000
s=""
for i=1 to 200
s=s+chr(65+i mod 26)
next
next
print len(s)
print mid(s, 0, 26)
