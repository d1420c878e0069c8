' primes.bas: the prime numbers below 1000, found with the sieve of Eratosthenes.
' Shows an integer array made with dim (an array used without dim gets indexes 0 to 10 only), a FOR
' loop with step, and printh, which prints without updating the screen until the next print.
' Run it: make run ARGS="examples/primes.bas"
dim icomposite(999)
icount=0
sline=""
for i=2 to 999
if icomposite(i) then $next_number
icount=icount+1
if i>=100 then $cross_out
sline=sline + i + " "
$cross_out
if i*i>999 then $next_number
for imultiple=i*i to 999 step i
icomposite(imultiple)=1
next
$next_number
next
printh "The primes below 100: "
print sline
print "There are " + icount + " primes below 1000."
