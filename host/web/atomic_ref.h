// std::atomic_ref for the web build, forced in before every source: the libc++ that ships with
// Debian's emscripten predates it. Only what the engine's planes use exists (load, store and a strong
// compare-exchange); on a library that has its own, this header does nothing.
#pragma once

#include <atomic>
#include <version>

#if !defined(__cpp_lib_atomic_ref)
namespace std {

template <class value_type>
class atomic_ref {
public:
    explicit atomic_ref(value_type& object) : p_object(&object) {}
    value_type load(memory_order order = memory_order_seq_cst) const
    {
        return __atomic_load_n(p_object, static_cast<int>(order));
    }
    void store(value_type value, memory_order order = memory_order_seq_cst) const
    {
        __atomic_store_n(p_object, value, static_cast<int>(order));
    }
    bool compare_exchange_strong(value_type& expected, value_type desired, memory_order order = memory_order_seq_cst) const
    {
        return __atomic_compare_exchange_n(p_object, &expected, desired, false, static_cast<int>(order),
            static_cast<int>(order));
    }

private:
    value_type* p_object;
};

}  // namespace std
#endif
