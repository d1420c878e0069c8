# Sieve of Eratosthenes: the primes up to 60000, five passes
flag = [False] * 60001
count = 0
for pass_number in range(5):
    for i in range(2, 60001):
        flag[i] = False
    for i in range(2, 245):
        if not flag[i]:
            for j in range(i * i, 60001, i):
                flag[j] = True
    count = 0
    for i in range(2, 60001):
        if not flag[i]:
            count += 1
print(count)
