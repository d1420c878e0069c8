' Sieve of Eratosthenes: the primes up to 60000, five passes
dim iflag(60000)
for ipass=1 to 5
for i=2 to 60000
iflag(i)=0
next
for i=2 to 244
if iflag(i) then $marked
for ij=i*i to 60000 step i
iflag(ij)=1
next
$marked
next
icount=0
for i=2 to 60000
if iflag(i) then $composite
icount=icount+1
$composite
next
next
print icount
