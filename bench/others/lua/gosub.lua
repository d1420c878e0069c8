-- GOSUB and RETURN: a million calls of a small function
local total = 0
local function add(i)
  total = total + i % 3
end
for i = 1, 1000000 do
  add(i)
end
print(total)
