print "ok"
i=1/0
