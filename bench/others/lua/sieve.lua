-- Sieve of Eratosthenes: the primes up to 60000, five passes
local flag = {}
local count = 0
for pass = 1, 5 do
  for i = 2, 60000 do
    flag[i] = false
  end
  for i = 2, 244 do
    if not flag[i] then
      for j = i * i, 60000, i do
        flag[j] = true
      end
    end
  end
  count = 0
  for i = 2, 60000 do
    if not flag[i] then
      count = count + 1
    end
  end
end
print(count)
