print 1
print 2
"unended
print 4
