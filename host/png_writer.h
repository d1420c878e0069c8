// Writes an upright 8-bit RGB image as a PNG file with libpng.
#pragma once

#include <string>

struct c_rgb_image;

// False with a one-line reason when the file cannot be created or written.
bool write_png(const char* file_name, const c_rgb_image& image, std::string& error);
