print 1
exit
print 2
