-- String building: strings of 200 characters joined one character at a time, 5000 times
local s
for pass = 1, 5000 do
  s = ""
  for i = 1, 200 do
    s = s .. string.char(65 + i % 26)
  end
end
print(#s)
print(s:sub(1, 26))
