// Files for tests: a fresh folder removed with its object (entered, when asked, so that plain names land
// in it), and a file's bytes read back.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

struct c_scratch_directory {
    explicit c_scratch_directory(bool enter = false) : entered(enter)
    {
        std::filesystem::create_directories(folder);
        if (entered)
            std::filesystem::current_path(folder);
    }
    ~c_scratch_directory()
    {
        if (entered)
            std::filesystem::current_path(previous);
        std::filesystem::remove_all(folder);
    }
    std::string path(const std::string& name) const { return (folder / name).string(); }

    bool entered;
    std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("vexil_test_" + std::to_string(std::random_device{}()));
};

inline std::string file_text(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}
