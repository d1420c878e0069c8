-- GOSUB and RETURN: a million calls of a small function
total = 0
local i
local function add()
    total = total + i % 3
end
for n = 1, 1000000 do
    i = n
    add()
end
print(total)
