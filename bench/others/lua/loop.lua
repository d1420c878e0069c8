-- Counted loop: ten million turns of an empty loop, then a million with an addition
for i = 1, 10000000 do
end
local sum = 0
for i = 1, 1000000 do
  sum = sum + i % 7
end
print(sum)
