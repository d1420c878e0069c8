print "a"
i=1/0
print "never"
