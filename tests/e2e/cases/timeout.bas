print "waiting for a key"
$wait if inkey()=0 goto $wait
print "never"
