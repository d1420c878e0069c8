-- Matrix product: two 60 x 60 real matrices multiplied three times
local a, b, c = {}, {}, {}
for i = 0, 59 do
  a[i], b[i], c[i] = {}, {}, {}
  for j = 0, 59 do
    a[i][j] = i + j + 0.0
    b[i][j] = i - j + 0.0
  end
end
for pass = 1, 3 do
  for i = 0, 59 do
    for j = 0, 59 do
      local sum = 0.0
      for k = 0, 59 do
        sum = sum + a[i][k] * b[k][j]
      end
      c[i][j] = sum
    end
  end
end
print(c[59][59])
