// What ChildProcessTest starts.
#include <cstdio>
#include <cstdlib>
#include <cstring>

int main(int count, char **arguments)
{
    char const *const variable = std::getenv("CHILD_VARIABLE");
    std::printf("%s %s\n", arguments[count - 1], variable == nullptr ? "" : variable);
    std::fflush(stdout);
    if (std::strcmp(arguments[1], "abort") == 0)
        std::abort();
    if (std::strcmp(arguments[1], "write") == 0)
    {
        for (int line = 0; line < 20000; ++line)
            std::fputs("more than fits into a pipe\n", stderr);
    }
    while (std::getchar() != EOF)
    {
    }
    return 3;
}
