// A fuzzed `dim` may ask for more memory than there is: the allocator then answers null, as the release
// build's does, so the engine reports "Out of memory" instead of the sanitizer stopping the run.
extern "C" const char* __asan_default_options()
{
    return "allocator_may_return_null=1";
}
