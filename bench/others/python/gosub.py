# GOSUB and RETURN: a million calls of a small function
total = 0


def add(i):
    global total
    total = total + i % 3


for i in range(1, 1000001):
    add(i)
print(total)
