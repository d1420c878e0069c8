# Mandelbrot set as text: 78 x 24 points, up to 100 iterations each, five times
shades = " .,:;=+*#%@"
for pass_number in range(5):
    for y in range(24):
        line = ""
        ci = -1.2 + y * 0.1
        for x in range(78):
            cr = -2.2 + x * 0.04
            zr = zi = 0.0
            count = 0
            while True:
                t = zr * zr - zi * zi + cr
                zi = 2.0 * zr * zi + ci
                zr = t
                count += 1
                if not (count < 100 and zr * zr + zi * zi < 4.0):
                    break
            line += shades[count // 10]
        print(line)
