// The ten file channels: the interpreter's stream table, the commands that open, write and close
// channels and the functions that read them. A null entry is a closed channel; closing always nulls it.
// The table keeps no mode: a stream opened for reading refuses writes itself, and the other way round.
#include "runtime/interpreter.h"

#include <cstdio>
#include <cstring>

#include "engine/error.h"
#include "engine/system_resource.h"
#include "language/code.h"
#include "runtime/command.h"
#include "runtime/expression.h"
#include "runtime/function.h"
#include "runtime/value.h"

namespace {

constexpr int file_name_size = 260;   // a 256-byte string and its terminator, with room to spare
constexpr int line_buffer_size = 260;
constexpr int line_read_size = 257;   // fgets keeps one byte for the terminator: 256 bytes a call

// Channel numbers are compared unsigned, so a negative one is out of range too.
bool channel_in_range(int channel)
{
    return static_cast<unsigned>(channel) < static_cast<unsigned>(channel_count);
}

// Evaluates one argument into value and records its code; returns the code.
int read_argument(c_value& value, const unsigned char*& p, c_system_resource* res)
{
    int code = c_expression(res).expression(value, p);
    res->error_code.raise(code);
    return code;
}

// The channel, its "," and the file name's string form, terminated; false once anything failed.
// A name holding a zero byte names the file up to that byte.
bool read_channel_and_name(int& channel, char (&name)[file_name_size], const unsigned char*& p,
                           c_system_resource* res)
{
    c_value number;
    if (read_argument(number, p, res) != 0)
        return false;
    channel = number.current->get_integer();
    if (!take_token(p, token_comma)) {
        res->error_code.raise(error_illegal_parameter);
        return false;
    }
    c_value file;  // a fresh value, so that an absent name is empty
    if (read_argument(file, p, res) != 0)
        return false;
    const char* text;
    int length;
    if (int code = file.string_form(text, length); code != 0) {
        res->error_code.raise(code);
        return false;
    }
    std::memcpy(name, text, length);
    name[length] = '\0';
    return true;
}

// The open stream of a channel, or null after recording 9 for a number outside 0 to 9 or 19 for a
// closed channel.
std::FILE* open_stream(std::FILE* const (&files)[channel_count], int channel, c_system_resource* res)
{
    if (!channel_in_range(channel)) {
        res->error_code.raise(error_illegal_parameter);
        return nullptr;
    }
    if (files[channel] == nullptr)
        res->error_code.raise(error_invalid_descriptor);
    return files[channel];
}

void open_channel(const unsigned char*& p, c_system_resource* res, const char* mode)
{
    int channel;
    char name[file_name_size];
    if (read_channel_and_name(channel, name, p, res))
        res->p_interpreter->file_open(channel, name, mode);
}

}  // namespace

void c_interpreter::file_open(int channel, const char* name, const char* mode)
{
    if (!channel_in_range(channel)) {
        p_system_resource->error_code.raise(error_illegal_parameter);
        return;
    }
    if (files[channel] != nullptr) {
        p_system_resource->error_code.raise(error_already_opened);
        return;
    }
    files[channel] = std::fopen(name, mode);
    if (files[channel] == nullptr)
        p_system_resource->error_code.raise(error_device_io);
}

// Closing a closed channel is no error.
void c_interpreter::file_close(int channel)
{
    if (!channel_in_range(channel)) {
        p_system_resource->error_code.raise(error_illegal_parameter);
        return;
    }
    if (files[channel] == nullptr)
        return;
    std::fclose(files[channel]);
    files[channel] = nullptr;
}

// No flush: the C library decides when the bytes reach the file, and closing the channel writes them.
void c_interpreter::file_print(int channel, const char* text, int length)
{
    std::FILE* stream = open_stream(files, channel, p_system_resource);
    if (stream == nullptr)
        return;
    if (std::fwrite(text, 1, length, stream) < static_cast<std::size_t>(length))
        p_system_resource->error_code.raise(error_device_io);
}

// One line, its line end kept, at most size - 1 bytes; 0 after a failure, the end of the file included.
int c_interpreter::file_input(int channel, char* buffer, int size)
{
    std::FILE* stream = open_stream(files, channel, p_system_resource);
    if (stream == nullptr)
        return 0;
    if (std::fgets(buffer, size, stream) == nullptr) {
        p_system_resource->error_code.raise(error_device_io);
        return 0;
    }
    return static_cast<int>(std::strlen(buffer));
}

// -1 only once a read has hit the end: reading the last line up to its line end does not.
int c_interpreter::file_eof(int channel)
{
    std::FILE* stream = open_stream(files, channel, p_system_resource);
    if (stream == nullptr)
        return 0;
    return std::feof(stream) ? -1 : 0;
}

void c_interpreter::all_file_close()
{
    for (std::FILE*& file : files) {
        if (file != nullptr)
            std::fclose(file);
        file = nullptr;
    }
}

void cmd_fropen(const unsigned char*& p, c_system_resource* res)
{
    open_channel(p, res, "rb");
}

// Creates the file or empties it.
void cmd_fwopen(const unsigned char*& p, c_system_resource* res)
{
    open_channel(p, res, "wb");
}

void cmd_fclose(const unsigned char*& p, c_system_resource* res)
{
    c_value channel;
    if (read_argument(channel, p, res) != 0)
        return;
    res->p_interpreter->file_close(channel.current->get_integer());
}

// The value's string form, then CR LF unless ";" follows: the line end is written even after the value
// failed to write, and is the same on every platform.
void cmd_fprint(const unsigned char*& p, c_system_resource* res)
{
    c_value number;
    if (read_argument(number, p, res) != 0)
        return;
    int channel = number.current->get_integer();
    if (!take_token(p, token_comma)) {
        res->error_code.raise(error_illegal_parameter);
        return;
    }
    c_value value;  // a fresh value, so that an absent one prints as nothing
    if (read_argument(value, p, res) != 0)
        return;
    const char* text;
    int length;
    if (int code = value.string_form(text, length); code != 0) {
        res->error_code.raise(code);
        return;
    }
    res->p_interpreter->file_print(channel, text, length);
    if (take_token(p, token_semicolon))
        return;
    res->p_interpreter->file_print(channel, "\r\n", 2);
}

// A line longer than 256 bytes comes back in pieces; on a failure the result is unchanged.
void fnc_finput(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    c_value channel;
    if (read_argument(channel, p, res) != 0)
        return;
    char line[line_buffer_size];
    int length = res->p_interpreter->file_input(channel.current->get_integer(), line, line_read_size);
    if (res->error_code == error_none)
        result.change_string(line, length);
}

// 0 also when the channel is refused.
void fnc_feof(c_value& result, const unsigned char*& p, c_system_resource* res)
{
    c_value channel;
    if (read_argument(channel, p, res) != 0)
        return;
    result.change_integer(res->p_interpreter->file_eof(channel.current->get_integer()));
}
