// For the end-to-end cases: prints a PNG's size as WxH, then "X,Y RRGGBB" for each pixel asked for.
// usage: png_probe FILE [X,Y]...   Exit status 1 when the file is not a readable PNG.
#include <cstdio>

#include "host/png_reader.h"

int main(int argc, char** argv)
{
    c_png_picture picture;
    if (argc < 2 || !read_png(argv[1], picture)) {
        std::fprintf(stderr, "png_probe: cannot read '%s'\n", argc < 2 ? "" : argv[1]);
        return 1;
    }
    std::printf("%dx%d\n", picture.width, picture.height);
    for (int index = 2; index < argc; ++index) {
        int x = -1;
        int y = -1;
        if (std::sscanf(argv[index], "%d,%d", &x, &y) != 2 || x < 0 || y < 0 || x >= picture.width ||
            y >= picture.height) {
            std::printf("%s outside\n", argv[index]);
            continue;
        }
        std::printf("%d,%d %06lX\n", x, y, picture.at(x, y));
    }
    return 0;
}
