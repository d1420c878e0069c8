-- Mixed loop in the manner of Rugg and Feldman's seventh test: arithmetic, a call and an inner loop
-- over an array, 200 000 turns of a loop closed by a test
local m = {}
local k, a = 0, 0.0
local function sub() end
repeat
  k = k + 1
  a = k / 2.0 * 3 + 4 - 5
  sub()
  for l = 1, 5 do
    m[l] = a
  end
until not (k < 200000)
print(math.floor(m[5]))
