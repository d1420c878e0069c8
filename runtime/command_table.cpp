// The command table. The row number is stored in the code after every command token.
#include "runtime/command.h"

#include <cstring>
#include <iterator>

#include "language/code.h"

const unsigned char end_mark = token_end;

const c_command_row c_command::command_list[] = {
    {"exit", cmd_exit},
    {"run", cmd_run},
    {"print", cmd_print},
    {"printh", cmd_printh},
    {"locate", cmd_locate},
    {"cls", cmd_cls},
    {"sleep", cmd_sleep},
    {"save", cmd_save},
    {"load", cmd_load},
    {"list", cmd_list},
    {"new", cmd_new},
    {"randomize", cmd_randomize},
    {"renum", cmd_renum},
    {"dim", cmd_dim},
    {"update_scr", cmd_update_screen},
    {"set_pixel", cmd_set_pixel},
    {"set_text_color", cmd_set_text_color},
    {"end", cmd_end},
    {"fropen", cmd_fropen},
    {"fwopen", cmd_fwopen},
    {"fclose", cmd_fclose},
    {"fprint", cmd_fprint},
};
static_assert(std::size(c_command::command_list) == 22);  // row numbers are stored in the code: never reorder

int c_command::get_code(const char* name)
{
    for (int row = 0; row < static_cast<int>(std::size(command_list)); ++row)
        if (std::strcmp(command_list[row].name, name) == 0)
            return row;
    return -1;
}
