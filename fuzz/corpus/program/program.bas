print "hello"
i=6*7
print i
