// libpng's simplified interface: one call writes the whole image, with no longjmp to guard against.
#include "host/png_writer.h"

#include <png.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "host/screen_capture.h"

bool write_png(const char* file_name, const c_rgb_image& image, std::string& error)
{
    std::FILE* file = std::fopen(file_name, "wb");
    if (file == nullptr) {
        error = std::string("cannot create '") + file_name + "': " + std::strerror(errno);
        return false;
    }
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    header.width = static_cast<png_uint_32>(image.width);
    header.height = static_cast<png_uint_32>(image.height);
    header.format = PNG_FORMAT_RGB;
    bool written = png_image_write_to_stdio(&header, file, 0, image.pixels.data(), 0, nullptr) != 0;
    if (!written)
        error = std::string("cannot write '") + file_name + "': " + header.message;
    png_image_free(&header);
    if (std::fclose(file) != 0 && written) {
        error = std::string("cannot write '") + file_name + "': " + std::strerror(errno);
        written = false;
    }
    return written;
}
