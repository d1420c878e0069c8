// Variables, arrays and the manager that registers them by name and hands out their ids.
// A variable lives while code refers to it: every id in code holds one reference, and the last
// reference given back deletes the variable, which leaves its list and frees its id.
#include "runtime/variable.h"

#include <atomic>
#include <cstring>
#include <initializer_list>
#include <limits>

#include "engine/allocation.h"
#include "engine/debug_log.h"
#include "engine/error.h"

namespace {

constexpr std::uint32_t first_slot_count = 64;

// The bytes held by every array of every engine in the process, kept under array_memory_limit.
std::atomic<std::size_t> array_bytes{0};

// Elements of `count` dimensions of the given sizes, or false when the product overflows.
bool element_total(int count, const int* sizes, std::size_t& total)
{
    total = 1;
    for (int i = 0; i < count; ++i) {
        std::size_t size = static_cast<std::size_t>(sizes[i]);
        if (total > std::numeric_limits<std::size_t>::max() / size)
            return false;
        total *= size;
    }
    return true;
}

}  // namespace

void c_variable::reject()
{
    if (next != nullptr)
        next->prev = prev;
    if (prev != nullptr)
        prev->next = next;
    prev = nullptr;
    next = nullptr;
}

void c_variable::link(c_variable* head)
{
    reject();
    prev = head;
    next = head->next;
    if (next != nullptr)
        next->prev = this;
    head->next = this;
}

void c_variable::set_name(const char* text)
{
    std::size_t length = std::strlen(text);
    if (length > static_cast<std::size_t>(name_capacity))
        length = name_capacity;
    std::memcpy(name, text, length);
    name[length] = '\0';
}

void c_variable_string::set(const char* source, int source_length)
{
    if (source_length < 0)
        source_length = 0;
    if (source_length > string_capacity)
        source_length = string_capacity;
    // The source may be this variable's own text (s = mid(s, ...)).
    std::memmove(text, source, static_cast<std::size_t>(source_length));
    length = source_length;
}

c_variable_array::~c_variable_array()
{
    clear();
}

void c_variable_array::clear()
{
    if (elements != nullptr) {
        std::size_t total = 0;
        (void)element_total(dimension_count, size, total);  // it fitted when the storage was taken
        array_bytes -= total * element_size;
    }
    delete[] static_cast<unsigned char*>(elements);
    elements = nullptr;
    dimension_count = 0;
}

int c_variable_array::dim(int count, const int* bounds)
{
    if (elements != nullptr)
        return error_redimensioned;
    // Fewer than one dimension would leave storage with a dimension count of 0, which means none.
    if (count < 1 || count > max_dimensions)
        return error_subscript;
    int sizes[max_dimensions];
    for (int i = 0; i < count; ++i) {
        // As unsigned, so a negative bound is out of range as well.
        if (static_cast<unsigned>(bounds[i]) > static_cast<unsigned>(max_bound))
            return error_subscript;
        sizes[i] = bounds[i] + 1;
    }
    std::size_t total = 0;
    if (!element_total(count, sizes, total) || total > array_memory_limit / element_size)
        return error_out_of_memory;
    const std::size_t bytes = total * element_size;
    if (bytes > array_memory_limit - array_bytes)
        return error_out_of_memory;
    // Zeroed: integers 0, reals 0.0, strings of length 0.
    unsigned char* storage = allocate_array<unsigned char>(bytes);
    if (storage == nullptr)
        return error_out_of_memory;
    array_bytes += bytes;
    elements = storage;
    dimension_count = count;
    std::memcpy(size, sizes, sizeof(int) * static_cast<std::size_t>(count));
    dlog.printf("  Array: Array dim %s[ %d elements ] (%p)\n", name, count, elements);
    return error_none;
}

int c_variable_array::offset_of(int count, const int* indices, std::size_t& offset)
{
    if (elements == nullptr && count >= 1 && count <= max_dimensions) {
        int bounds[max_dimensions];
        for (int i = 0; i < count; ++i)
            bounds[i] = automatic_bound;
        dlog.printf("  Array: Automatic array dim %s[ %d elements ]\n", name, count);
        // Storage that cannot be had is out of memory, not a subscript out of range.
        if (dim(count, bounds) == error_out_of_memory)
            return error_out_of_memory;
    }
    if (elements == nullptr || dimension_count != count)
        return error_subscript;
    offset = 0;
    for (int i = 0; i < count; ++i) {
        if (static_cast<unsigned>(indices[i]) >= static_cast<unsigned>(size[i]))
            return error_subscript;
        offset = offset * static_cast<std::size_t>(size[i]) + static_cast<std::size_t>(indices[i]);
    }
    return error_none;
}

int c_variable_integer_array::get(int count, const int* indices, int& out)
{
    std::size_t offset = 0;
    if (int code = offset_of(count, indices, offset); code != error_none)
        return code;
    dlog.printf("  Array get: %s[ %d elements ] (%p)\n", name, count, elements);
    out = static_cast<int*>(elements)[offset];
    return error_none;
}

int c_variable_integer_array::set(int count, const int* indices, int value)
{
    std::size_t offset = 0;
    if (int code = offset_of(count, indices, offset); code != error_none)
        return code;
    static_cast<int*>(elements)[offset] = value;
    return error_none;
}

int c_variable_real_array::get(int count, const int* indices, double& out)
{
    std::size_t offset = 0;
    if (int code = offset_of(count, indices, offset); code != error_none)
        return code;
    dlog.printf("  Array get: %s[ %d elements ] (%p)\n", name, count, elements);
    out = static_cast<double*>(elements)[offset];
    return error_none;
}

int c_variable_real_array::set(int count, const int* indices, double value)
{
    std::size_t offset = 0;
    if (int code = offset_of(count, indices, offset); code != error_none)
        return code;
    static_cast<double*>(elements)[offset] = value;
    return error_none;
}

int c_variable_string_array::get(int count, const int* indices, const char*& text, int& length)
{
    std::size_t offset = 0;
    if (int code = offset_of(count, indices, offset); code != error_none)
        return code;
    dlog.printf("  Array get: %s[ %d elements ] (%p)\n", name, count, elements);
    const c_string_element& element = static_cast<c_string_element*>(elements)[offset];
    text = element.text;
    length = element.length;
    return error_none;
}

int c_variable_string_array::set(int count, const int* indices, const char* text, int length)
{
    std::size_t offset = 0;
    if (int code = offset_of(count, indices, offset); code != error_none)
        return code;
    if (length < 0)
        length = 0;
    if (length > string_capacity)
        length = string_capacity;
    c_string_element& element = static_cast<c_string_element*>(elements)[offset];
    element.length = length;
    std::memmove(element.text, text, static_cast<std::size_t>(length));
    return error_none;
}

std::size_t array_memory_used()
{
    return array_bytes;
}

c_variable_manager::c_variable_manager() = default;

c_variable_manager::~c_variable_manager()
{
    for (c_variable* head : {&variable_list, &array_list, &label_list})
        while (head->next != nullptr)
            delete head->next;  // its destructor unlinks it
    delete[] slots;
    delete[] free_ids;
}

c_variable* c_variable_manager::search(c_variable* first, const char* name)
{
    for (c_variable* variable = first; variable != nullptr; variable = variable->next)
        if (std::strcmp(variable->name, name) == 0)
            return variable;
    return nullptr;
}

c_variable* c_variable_manager::acquire(unsigned char kind, const char* name)
{
    c_variable* head = head_of(kind);
    if (head == nullptr)
        return nullptr;
    c_variable* variable = search(head->next, name);
    if (variable != nullptr) {
        ++variable->reference_count;
        dlog.printf("  Variable [%s] add reference (%d)\n", variable->name, variable->reference_count);
        return variable;
    }
    variable = create(kind);
    if (variable == nullptr)
        return nullptr;
    variable->set_name(name);
    if (!enrol(variable)) {
        delete variable;
        return nullptr;
    }
    variable->link(head);
    return variable;
}

void c_variable_manager::line_release(const unsigned char* code, int length, const c_program_line* line)
{
    ++code_generation;
    for (int position = 0; position < length; position += token_size(code + position)) {
        if (!is_variable_token(code[position]))
            continue;
        c_variable* variable = slots[peek_operand<variable_id>(code + position + 1)];
        if (code[position] == token_label && line != nullptr) {
            auto* label = static_cast<c_variable_label*>(variable);
            if (label->line == line) {
                label->line = nullptr;
                label->position = 0;
            }
        }
        dlog.printf("  Variable [%s] release reference (%d)\n", variable->name, variable->reference_count);
        if (--variable->reference_count == 0) {
            dlog.printf("    Variable [%s] delete\n", variable->name);
            retire(variable);
        }
    }
}

void c_variable_manager::array_clear()
{
    dlog.printf("  Initialize array instance {\n");
    for (c_variable* array = array_list.next; array != nullptr; array = array->next) {
        dlog.printf("    Array: Clear array instance %s()\n", array->name);
        array->clear();
    }
    dlog.printf("  }\n");
}

c_variable* c_variable_manager::head_of(unsigned char kind)
{
    switch (kind) {
    case token_integer_variable:
    case token_real_variable:
    case token_string_variable:
        return &variable_list;
    case token_integer_array:
    case token_real_array:
    case token_string_array:
        return &array_list;
    case token_label:
        return &label_list;
    default:
        return nullptr;
    }
}

c_variable* c_variable_manager::create(unsigned char kind)
{
    switch (kind) {
    case token_integer_variable:
        return allocate_object<c_variable_integer>();
    case token_real_variable:
        return allocate_object<c_variable_real>();
    case token_string_variable:
        return allocate_object<c_variable_string>();
    case token_integer_array:
        return allocate_object<c_variable_integer_array>();
    case token_real_array:
        return allocate_object<c_variable_real_array>();
    case token_string_array:
        return allocate_object<c_variable_string_array>();
    case token_label:
        return allocate_object<c_variable_label>();
    default:
        return nullptr;
    }
}

// Doubles the table; on failure the old one stays as it was.
bool c_variable_manager::grow()
{
    if (slot_count > std::numeric_limits<std::uint32_t>::max() / 2)
        return false;
    std::uint32_t new_count = slot_count == 0 ? first_slot_count : slot_count * 2;
    c_variable** new_slots = allocate_array<c_variable*>(new_count);
    std::uint32_t* new_free_ids = allocate_array<std::uint32_t>(new_count);
    if (new_slots == nullptr || new_free_ids == nullptr) {
        delete[] new_slots;
        delete[] new_free_ids;
        return false;
    }
    if (slot_count != 0) {
        std::memcpy(new_slots, slots, sizeof(c_variable*) * slot_count);
        std::memcpy(new_free_ids, free_ids, sizeof(std::uint32_t) * free_count);
    }
    delete[] slots;
    delete[] free_ids;
    slots = new_slots;
    free_ids = new_free_ids;
    slot_count = new_count;
    return true;
}

bool c_variable_manager::enrol(c_variable* variable)
{
    if (free_count != 0) {
        variable->id = free_ids[--free_count];
    } else {
        std::uint32_t id = issued_count == 0 ? 1 : issued_count;  // id 0 stays unused
        if (id >= slot_count && !grow())
            return false;
        variable->id = id;
        issued_count = id + 1;
    }
    slots[variable->id] = variable;
    return true;
}

void c_variable_manager::retire(c_variable* variable)
{
    slots[variable->id] = nullptr;
    free_ids[free_count++] = variable->id;
    delete variable;
}
