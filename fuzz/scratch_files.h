// Files for fuzzed programs: every name the engine opens, removes or renames must be a plain name
// (no "/", not "." or ".."), and it is taken inside one scratch folder the process makes for itself.
// The fuzz build renames the engine's fopen, remove and rename to these, so fuzzed bytes reach no
// other file.
#pragma once

#include <cstdio>

extern "C" {
std::FILE* scratch_fopen(const char* name, const char* mode);
int scratch_remove(const char* name);
int scratch_rename(const char* from, const char* to);
}

// Removes every file the last input left in the scratch folder, so each input starts from none.
void scratch_clear();
