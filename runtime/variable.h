// Variables, labels and arrays, found by name only while a line is translated; code then holds their
// ids. Each variable counts the code occurrences that refer to it and is deleted when the last one is
// given back. The manager keeps three lists (scalars, arrays, labels) and the id table.
#pragma once

#include <cstddef>
#include <cstdint>

#include "language/code.h"
#include "runtime/value.h"

constexpr int name_capacity = 32;     // characters of a name; longer names are cut by the tokenizer
constexpr int max_dimensions = 8;
constexpr int max_bound = 65535;      // the largest upper bound of one dimension
constexpr int automatic_bound = 10;   // an undimensioned array used in code gets 11 elements a dimension
// All arrays together hold at most 1 GiB: a dim past it reports 22 "Out of memory" rather than being
// granted and then touched until the machine runs out. It is far above what the handheld could hold.
constexpr std::size_t array_memory_limit = std::size_t{1} << 30;

// The bytes all arrays hold now, in every engine of the process.
std::size_t array_memory_used();

class c_variable {
public:
    c_variable() = default;
    c_variable(const c_variable&) = delete;
    c_variable& operator=(const c_variable&) = delete;
    virtual ~c_variable() { reject(); }
    virtual void clear() {}

    void reject();                 // leaves its list
    void link(c_variable* head);   // moves to the front of head's list
    void set_name(const char* text);  // keeps the first 32 characters

    c_variable* prev = nullptr;
    c_variable* next = nullptr;
    char name[36] = {};
    int reference_count = 1;
    variable_id id = 0;            // its slot in the manager's table
};

class c_variable_integer : public c_variable {
public:
    int value = 0;
};

class c_variable_real : public c_variable {
public:
    double value = 0.0;
};

class c_variable_string : public c_variable {
public:
    void set(const char* source, int source_length);  // 0 to 256 bytes
    char text[string_capacity];
    int length = 0;
};

class c_variable_label : public c_variable {
public:
    int position = 0;                  // code offset just after the defining label token
    c_program_line* line = nullptr;    // the defining line; null while none defines it
};

struct c_string_element {
    char text[string_capacity];
    int length;
};

// Dimensions and bounds shared by the three array kinds. Storage is one zeroed block, row-major.
class c_variable_array : public c_variable {
public:
    ~c_variable_array() override;
    void clear() override;         // frees the storage: the array is undimensioned again
    // 13 when already dimensioned, 14 for more than 8 dimensions or a bound outside 0..65535,
    // 22 when the storage cannot be had or would pass array_memory_limit (the array stays undimensioned).
    [[nodiscard]] int dim(int count, const int* bounds);
    bool dimensioned() const { return elements != nullptr; }

    void* elements = nullptr;
    int dimension_count = 0;
    int size[max_dimensions] = {};

protected:
    explicit c_variable_array(std::size_t element_bytes) : element_size(element_bytes) {}
    // Dimensions automatically when needed, then checks the count and every index: 0, 14, or 22 when
    // the automatic storage cannot be had.
    [[nodiscard]] int offset_of(int count, const int* indices, std::size_t& offset);

private:
    std::size_t element_size;
};

class c_variable_integer_array : public c_variable_array {
public:
    c_variable_integer_array() : c_variable_array(sizeof(int)) {}
    [[nodiscard]] int get(int count, const int* indices, int& out);
    [[nodiscard]] int set(int count, const int* indices, int value);
};

class c_variable_real_array : public c_variable_array {
public:
    c_variable_real_array() : c_variable_array(sizeof(double)) {}
    [[nodiscard]] int get(int count, const int* indices, double& out);
    [[nodiscard]] int set(int count, const int* indices, double value);
};

class c_variable_string_array : public c_variable_array {
public:
    c_variable_string_array() : c_variable_array(sizeof(c_string_element)) {}
    [[nodiscard]] int get(int count, const int* indices, const char*& text, int& length);
    [[nodiscard]] int set(int count, const int* indices, const char* text, int length);
};

class c_variable_manager {
public:
    c_variable_manager();
    ~c_variable_manager();
    c_variable_manager(const c_variable_manager&) = delete;
    c_variable_manager& operator=(const c_variable_manager&) = delete;

    c_variable* search(c_variable* first, const char* name);
    // Finds the variable that a token of this kind (3 to 9) names and adds a reference, or creates it
    // with one reference, links it at the front of its list and gives it an id. Null when out of memory.
    c_variable* acquire(unsigned char kind, const char* name);
    // Gives back every reference held by the code. Labels that `line` defines lose their definition,
    // so no jump can follow them into code that is going away.
    void line_release(const unsigned char* code, int length, const c_program_line* line = nullptr);
    void array_clear();

    c_variable* at(variable_id id) const { return slots[id]; }
    template <class T>
    T* get(variable_id id) const { return static_cast<T*>(slots[id]); }

    c_variable variable_list;
    c_variable array_list;
    c_variable label_list;
    // Counts line_release calls: code goes away only through it, and its variables with it, so
    // anything kept about code (its address, its variables' places) holds only within one count.
    unsigned code_generation = 0;

private:
    c_variable* head_of(unsigned char kind);
    static c_variable* create(unsigned char kind);
    [[nodiscard]] bool grow();
    [[nodiscard]] bool enrol(c_variable* variable);  // gives it a free id
    void retire(c_variable* variable);               // frees its id and deletes it

    // Id 0 is never handed out, so zeroed code names no variable. Ids below issued_count are either
    // in use or on the stack of free ids, which has room for every slot.
    c_variable** slots = nullptr;
    std::uint32_t* free_ids = nullptr;
    std::uint32_t slot_count = 0;
    std::uint32_t issued_count = 0;
    std::uint32_t free_count = 0;
};
