// The engine's file calls: a plain name becomes a path in the scratch folder, any other name fails
// as a file that cannot be opened would. The folder is made on first use and removed at exit.
#include "fuzz/scratch_files.h"

#include <dirent.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr std::size_t longest_name = 200;  // well inside any file system's limit with the folder's path
bool files_made = false;                   // since the last clear: most inputs open no file at all

void remove_folder();

// A plain array, not a string: the folder is removed at exit, after static objects may have gone.
const char* scratch_folder()
{
    static char folder[] = "/tmp/vexil-fuzz-XXXXXX";
    static const bool made = [] {
        if (::mkdtemp(folder) == nullptr) {
            std::perror("vexil fuzz: cannot make the scratch folder");
            std::abort();
        }
        return std::atexit(remove_folder) == 0;
    }();
    (void)made;
    return folder;
}

void remove_folder()
{
    scratch_clear();
    ::rmdir(scratch_folder());
}

// The path for a plain name, or an empty string (errno set) for any other.
std::string scratch_path(const char* name)
{
    const std::size_t length = std::strlen(name);
    if (length == 0 || length > longest_name || std::strchr(name, '/') != nullptr || std::strcmp(name, ".") == 0
        || std::strcmp(name, "..") == 0) {
        errno = ENOENT;
        return {};
    }
    return std::string(scratch_folder()) + "/" + name;
}

}  // namespace

void scratch_clear()
{
    if (!files_made)
        return;
    files_made = false;
    DIR* folder = ::opendir(scratch_folder());
    if (folder == nullptr)
        return;
    while (const dirent* entry = ::readdir(folder))
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0)
            ::unlink((std::string(scratch_folder()) + "/" + entry->d_name).c_str());
    ::closedir(folder);
}

std::FILE* scratch_fopen(const char* name, const char* mode)
{
    const std::string path = scratch_path(name);
    if (path.empty())
        return nullptr;
    files_made = true;
    return std::fopen(path.c_str(), mode);
}

int scratch_remove(const char* name)
{
    const std::string path = scratch_path(name);
    return path.empty() ? -1 : std::remove(path.c_str());
}

int scratch_rename(const char* from, const char* to)
{
    const std::string from_path = scratch_path(from);
    const std::string to_path = scratch_path(to);
    return from_path.empty() || to_path.empty() ? -1 : std::rename(from_path.c_str(), to_path.c_str());
}
