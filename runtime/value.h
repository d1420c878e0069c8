// Typed values: none, integer, real and counted string, with every operator of the language on the
// left operand's type. Operations work in place on the left operand and return an error code; on any
// error the left operand is unchanged. A c_value owns no heap memory and is never copied.
#pragma once

constexpr int type_none = 0;
constexpr int type_integer = 1;
constexpr int type_real = 2;
constexpr int type_string = 3;

constexpr int string_capacity = 256;  // bytes in a string value

// The none type; also the defaults of the others. Every operator returns 4 "Syntax error".
// There is no virtual destructor: type objects live inside c_value and are never deleted through a base.
class c_base_type {
public:
    c_base_type() = default;
    int get_type() const { return type; }

    virtual int get_integer() const;
    virtual double get_real() const;
    virtual void get_string(const char*& text, int& length) const;
    // The text form ("%d", "%f", the string itself; nothing for none); 8 "Out of string space" when a
    // real's text would pass 256 bytes. The buffer holds at least string_capacity bytes.
    [[nodiscard]] virtual int convert_to_string(char* buffer, int& length) const;

    [[nodiscard]] virtual int minus();
    [[nodiscard]] virtual int plus();
    [[nodiscard]] virtual int not_op();
    [[nodiscard]] virtual int addition(const c_base_type* right);
    [[nodiscard]] virtual int subtraction(const c_base_type* right);
    [[nodiscard]] virtual int lshift(const c_base_type* right);
    [[nodiscard]] virtual int rshift(const c_base_type* right);
    [[nodiscard]] virtual int multiplication(const c_base_type* right);
    [[nodiscard]] virtual int division(const c_base_type* right);
    [[nodiscard]] virtual int power(const c_base_type* right);
    [[nodiscard]] virtual int remainder(const c_base_type* right);
    [[nodiscard]] virtual int and_op(const c_base_type* right);
    [[nodiscard]] virtual int or_op(const c_base_type* right);
    [[nodiscard]] virtual int xor_op(const c_base_type* right);
    [[nodiscard]] virtual int equ(int& result, const c_base_type* right) const;
    [[nodiscard]] virtual int not_equ(int& result, const c_base_type* right) const;
    [[nodiscard]] virtual int gt(int& result, const c_base_type* right) const;
    [[nodiscard]] virtual int gt_equ(int& result, const c_base_type* right) const;
    [[nodiscard]] virtual int lt(int& result, const c_base_type* right) const;
    [[nodiscard]] virtual int lt_equ(int& result, const c_base_type* right) const;

protected:
    explicit c_base_type(int tag) : type(tag) {}

private:
    int type = type_none;
};

class c_integer_type : public c_base_type {
public:
    c_integer_type() : c_base_type(type_integer) {}
    void set(int v) { value = v; }
    int get_integer() const override;
    double get_real() const override;
    [[nodiscard]] int convert_to_string(char* buffer, int& length) const override;
    [[nodiscard]] int minus() override;
    [[nodiscard]] int plus() override;
    [[nodiscard]] int not_op() override;
    [[nodiscard]] int addition(const c_base_type* right) override;
    [[nodiscard]] int subtraction(const c_base_type* right) override;
    [[nodiscard]] int lshift(const c_base_type* right) override;
    [[nodiscard]] int rshift(const c_base_type* right) override;
    [[nodiscard]] int multiplication(const c_base_type* right) override;
    [[nodiscard]] int division(const c_base_type* right) override;
    [[nodiscard]] int power(const c_base_type* right) override;
    [[nodiscard]] int remainder(const c_base_type* right) override;
    [[nodiscard]] int and_op(const c_base_type* right) override;
    [[nodiscard]] int or_op(const c_base_type* right) override;
    [[nodiscard]] int xor_op(const c_base_type* right) override;
    [[nodiscard]] int equ(int& result, const c_base_type* right) const override;
    [[nodiscard]] int not_equ(int& result, const c_base_type* right) const override;
    [[nodiscard]] int gt(int& result, const c_base_type* right) const override;
    [[nodiscard]] int gt_equ(int& result, const c_base_type* right) const override;
    [[nodiscard]] int lt(int& result, const c_base_type* right) const override;
    [[nodiscard]] int lt_equ(int& result, const c_base_type* right) const override;

    int value = 0;
};

class c_real_type : public c_base_type {
public:
    c_real_type() : c_base_type(type_real) {}
    void set(double v) { value = v; }
    int get_integer() const override;
    double get_real() const override;
    [[nodiscard]] int convert_to_string(char* buffer, int& length) const override;
    [[nodiscard]] int minus() override;
    [[nodiscard]] int plus() override;
    [[nodiscard]] int addition(const c_base_type* right) override;
    [[nodiscard]] int subtraction(const c_base_type* right) override;
    [[nodiscard]] int multiplication(const c_base_type* right) override;
    [[nodiscard]] int division(const c_base_type* right) override;
    [[nodiscard]] int power(const c_base_type* right) override;
    [[nodiscard]] int remainder(const c_base_type* right) override;
    [[nodiscard]] int equ(int& result, const c_base_type* right) const override;
    [[nodiscard]] int not_equ(int& result, const c_base_type* right) const override;
    [[nodiscard]] int gt(int& result, const c_base_type* right) const override;
    [[nodiscard]] int gt_equ(int& result, const c_base_type* right) const override;
    [[nodiscard]] int lt(int& result, const c_base_type* right) const override;
    [[nodiscard]] int lt_equ(int& result, const c_base_type* right) const override;

    double value = 0.0;
};

class c_string_type : public c_base_type {
public:
    c_string_type() : c_base_type(type_string) {}
    void set(const char* source, int source_length);
    void get_string(const char*& result, int& result_length) const override;
    [[nodiscard]] int convert_to_string(char* buffer, int& result_length) const override;
    [[nodiscard]] int addition(const c_base_type* right) override;

    // Counted, never terminated; left uninitialised so that making a value costs nothing.
    char text[string_capacity];
    int length = 0;
};

// String concatenation, the one definition that the string type and an in-place append share: appends
// the right operand's text (a string's own, a real's "%f", otherwise the "%d" of get_integer, so a none
// appends "0") to the `length` bytes at `text`. More than 256 bytes in all gives 8 and changes nothing.
[[nodiscard]] int string_append(char* text, int& length, const c_base_type* right);

class c_value {
public:
    // User-provided, so that even `c_value v{};` leaves the 256 text bytes unwritten.
    c_value() {}
    c_value(const c_value&) = delete;
    c_value& operator=(const c_value&) = delete;

    void change_integer(int v)
    {
        integer_value.value = v;
        current = &integer_value;
    }
    void change_real(double v)
    {
        real_value.value = v;
        current = &real_value;
    }
    void change_string(const char* text, int length)  // 0 to 256 bytes
    {
        string_value.set(text, length);
        current = &string_value;
    }
    void change_byte(char byte)  // a one-byte string
    {
        string_value.text[0] = byte;
        string_value.length = 1;
        current = &string_value;
    }
    // Makes the value its own text form; a none becomes the empty string.
    [[nodiscard]] int convert_to_string();
    // convert_to_string, then the text and its byte count; on a failure the text is empty.
    [[nodiscard]] int string_form(const char*& text, int& length)
    {
        int code = convert_to_string();
        current->get_string(text, length);
        return code;
    }
    int get_type() const { return current->get_type(); }

    c_base_type* current = &base_value;
    c_base_type base_value;
    c_integer_type integer_value;
    c_real_type real_value;
    c_string_type string_value;
};
