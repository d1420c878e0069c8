// The function table and the function handlers. The evaluator checks the "(" before a handler runs
// and the ")" after it; a handler reads its arguments from just after "(" and stops before ")".
// Failures go to error_code only; a handler that stops early leaves the result as it was.
#pragma once

class c_value;
struct c_system_resource;

using function_handler = void (*)(c_value& result, const unsigned char*& p, c_system_resource* res);

struct c_function_row {
    const char* name;
    function_handler handler;
    int result_type;  // 0 integer, 1 real, 2 string; informative only
};

class c_function {
public:
    static const c_function_row function_list[];  // unsized: its definition's count is checked
    static int get_code(const char* name);  // the row whose name matches exactly, or -1
};

void fnc_rnd(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_sin(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_cos(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_tan(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_log(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_sqrt(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_exp(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_log10(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_abs(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_asin(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_acos(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_atan(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_sinh(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_cosh(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_tanh(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_inkey(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_rgb(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_mid(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_len(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_finput(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_feof(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_hex(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_chr(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_bin(c_value& result, const unsigned char*& p, c_system_resource* res);
void fnc_asc(c_value& result, const unsigned char*& p, c_system_resource* res);
