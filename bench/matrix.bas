' Matrix product: two 60 x 60 real matrices multiplied three times
dim ra(59,59), rb(59,59), rc(59,59)
for i=0 to 59
for ij=0 to 59
ra(i,ij)=i+ij
rb(i,ij)=i-ij
next
next
for ipass=1 to 3
for i=0 to 59
for ij=0 to 59
rsum=0.0
for ik=0 to 59
rsum=rsum+ra(i,ik)*rb(ik,ij)
next
rc(i,ij)=rsum
next
next
next
print rc(59,59)
