// Linked into every program of the sanitizer build: an allocation too large to make answers null, as it
// does without the sanitizer, so the engine reports "Out of memory" instead of the sanitizer aborting.
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
