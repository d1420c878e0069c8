// The function table. The row number is stored in the code after every function token; `asc` was
// added as the last row so that no older row moves.
#include "runtime/function.h"

#include <cstring>
#include <iterator>

const c_function_row c_function::function_list[] = {
    {"rnd", fnc_rnd, 1},
    {"sin", fnc_sin, 1},
    {"cos", fnc_cos, 1},
    {"tan", fnc_tan, 1},
    {"log", fnc_log, 1},
    {"sqrt", fnc_sqrt, 1},
    {"exp", fnc_exp, 1},
    {"log10", fnc_log10, 1},
    {"abs", fnc_abs, 1},
    {"asin", fnc_asin, 1},
    {"acos", fnc_acos, 1},
    {"atan", fnc_atan, 1},
    {"sinh", fnc_sinh, 1},
    {"cosh", fnc_cosh, 1},
    {"tanh", fnc_tanh, 1},
    {"inkey", fnc_inkey, 0},
    {"rgb", fnc_rgb, 0},
    {"mid", fnc_mid, 2},
    {"len", fnc_len, 0},
    {"finput", fnc_finput, 2},
    {"feof", fnc_feof, 0},
    {"hex", fnc_hex, 2},
    {"chr", fnc_chr, 2},
    {"bin", fnc_bin, 2},
    {"asc", fnc_asc, 0},
};
static_assert(std::size(c_function::function_list) == 25);  // row numbers are stored in the code: never reorder

int c_function::get_code(const char* name)
{
    for (int row = 0; row < static_cast<int>(std::size(function_list)); ++row)
        if (std::strcmp(function_list[row].name, name) == 0)
            return row;
    return -1;
}
