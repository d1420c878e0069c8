// The command table and the command handlers. A handler gets the code cursor just after its command
// token, reads its own arguments and leaves the cursor on the first byte it did not take; it may set
// the cursor to null to end execution. Failures go to error_code.
#pragma once

struct c_system_resource;

using command_handler = void (*)(const unsigned char*& p, c_system_resource* res);

struct c_command_row {
    const char* name;
    command_handler handler;
};

class c_command {
public:
    static const c_command_row command_list[];  // unsized: its definition's count is checked
    static int get_code(const char* name);  // the row whose name matches exactly, or -1
};

extern const unsigned char end_mark;  // a lone end-of-line token

void cmd_exit(const unsigned char*& p, c_system_resource* res);
void cmd_run(const unsigned char*& p, c_system_resource* res);
void cmd_print(const unsigned char*& p, c_system_resource* res);
void cmd_printh(const unsigned char*& p, c_system_resource* res);
void cmd_locate(const unsigned char*& p, c_system_resource* res);
void cmd_cls(const unsigned char*& p, c_system_resource* res);
void cmd_sleep(const unsigned char*& p, c_system_resource* res);
void cmd_save(const unsigned char*& p, c_system_resource* res);
void cmd_load(const unsigned char*& p, c_system_resource* res);
void cmd_list(const unsigned char*& p, c_system_resource* res);
void cmd_new(const unsigned char*& p, c_system_resource* res);
void cmd_randomize(const unsigned char*& p, c_system_resource* res);
void cmd_renum(const unsigned char*& p, c_system_resource* res);
void cmd_dim(const unsigned char*& p, c_system_resource* res);
void cmd_update_screen(const unsigned char*& p, c_system_resource* res);
void cmd_set_pixel(const unsigned char*& p, c_system_resource* res);
void cmd_set_text_color(const unsigned char*& p, c_system_resource* res);
void cmd_end(const unsigned char*& p, c_system_resource* res);
void cmd_fropen(const unsigned char*& p, c_system_resource* res);
void cmd_fwopen(const unsigned char*& p, c_system_resource* res);
void cmd_fclose(const unsigned char*& p, c_system_resource* res);
void cmd_fprint(const unsigned char*& p, c_system_resource* res);
