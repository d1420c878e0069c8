# Counted loop: ten million turns of an empty loop, then a million with an addition
for i in range(1, 10000001):
    pass
total = 0
for i in range(1, 1000001):
    total = total + i % 7
print(total)
