// What is loaded late, and crashes.
int *volatile g_nothing = nullptr;

extern "C" [[gnu::visibility("default"), gnu::noinline, gnu::no_sanitize("undefined", "address")]] void
CrashInModule()
{
    *g_nothing = 1;
}
