# Matrix product: two 60 x 60 real matrices multiplied three times
a = [[float(i + j) for j in range(60)] for i in range(60)]
b = [[float(i - j) for j in range(60)] for i in range(60)]
c = [[0.0] * 60 for i in range(60)]
for pass_number in range(3):
    for i in range(60):
        for j in range(60):
            total = 0.0
            for k in range(60):
                total = total + a[i][k] * b[k][j]
            c[i][j] = total
print(c[59][59])
