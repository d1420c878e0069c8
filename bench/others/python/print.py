# Printing: 100 000 numbered lines
for i in range(1, 100001):
    print("line " + str(i))
