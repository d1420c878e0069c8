// Linked into every program of the sanitizer build: an allocation too large to make answers null, as it
// does without the sanitizer, so the engine reports "Out of memory" instead of the sanitizer aborting.
// Weak, so that a program that brings options of its own keeps them and still links.
extern "C" __attribute__((weak)) const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
