# Mixed loop in the manner of Rugg and Feldman's seventh test: arithmetic, a call and an inner loop
# over an array, 200 000 turns of a loop closed by a test
m = [0.0] * 6
k = 0


def sub():
    pass


while True:
    k = k + 1
    a = k / 2.0 * 3 + 4 - 5
    sub()
    for l in range(1, 6):
        m[l] = a
    if not k < 200000:
        break
print(int(m[5]))
