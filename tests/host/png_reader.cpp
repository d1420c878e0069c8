#include "host/png_reader.h"

#include <png.h>

bool read_png(const char* file_name, c_png_picture& picture)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, file_name) == 0)
        return false;
    picture.plain_rgb = image.format == PNG_FORMAT_RGB;
    image.format = PNG_FORMAT_RGB;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    picture.pixels.assign(PNG_IMAGE_SIZE(image), 0);
    if (png_image_finish_read(&image, nullptr, picture.pixels.data(), 0, nullptr) == 0) {
        png_image_free(&image);
        return false;
    }
    return true;
}
