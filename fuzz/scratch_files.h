// Files for fuzzed programs: every name the engine opens, removes or renames must be a plain name
// (no "/", not "." or ".."), and it is taken inside one scratch folder the process makes for itself.
// The linker routes the engine's calls here (--wrap), so fuzzed bytes never reach another file.
#pragma once

// Removes every file the last input left in the scratch folder, so each input starts from none.
void scratch_clear();
