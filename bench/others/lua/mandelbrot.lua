-- Mandelbrot set as text: 78 x 24 points, up to 100 iterations each, five times
local shades = " .,:;=+*#%@"
for pass = 1, 5 do
  for y = 0, 23 do
    local line = ""
    local ci = -1.2 + y * 0.1
    for x = 0, 77 do
      local cr = -2.2 + x * 0.04
      local zr, zi, count = 0.0, 0.0, 0
      repeat
        local t = zr * zr - zi * zi + cr
        zi = 2.0 * zr * zi + ci
        zr = t
        count = count + 1
      until not (count < 100 and zr * zr + zi * zi < 4.0)
      local shade = count // 10 + 1
      line = line .. shades:sub(shade, shade)
    end
    print(line)
  end
end
