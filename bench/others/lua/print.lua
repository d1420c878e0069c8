-- Printing: 100 000 numbered lines
for i = 1, 100000 do
  print("line " .. i)
end
