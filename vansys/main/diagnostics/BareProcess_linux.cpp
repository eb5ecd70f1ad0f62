#include "main/diagnostics/BareProcess_linux.h"

#include <sched.h>

namespace vansys::detail
{

RawWord MakeBareProcess(RawWord flags, std::byte *stackEnd, void (*function)(void *) noexcept, void *argument,
                        std::atomic<std::int32_t> *id) noexcept
{
    // The process pops these off its stack, where its first call finds the alignment that it expects.
    auto const stack = reinterpret_cast<void **>(stackEnd) - 2;
    stack[0] = reinterpret_cast<void *>(function);
    stack[1] = argument;
    register RawWord childWord asm("r10") = ToRawWord(id);
    register RawWord threadPointer asm("r8") = 0;
    RawWord result = SYS_clone;
    asm volatile("syscall\n\t"
                 "test %%rax, %%rax\n\t"
                 "jnz 1f\n\t"
                 "xor %%ebp, %%ebp\n\t"
                 "pop %%rax\n\t"
                 "pop %%rdi\n\t"
                 "call *%%rax\n\t"
                 "xor %%edi, %%edi\n\t"
                 "mov %[exit], %%eax\n\t"
                 "syscall\n\t"
                 "hlt\n"
                 "1:"
                 : "+a"(result)
                 : "D"(ToRawWord(CLONE_VM) | flags), "S"(stack), "d"(id), "r"(childWord),
                   "r"(threadPointer), [exit] "i"(SYS_exit_group)
                 : "rcx", "r11", "memory");
    return result;
}

} // namespace vansys::detail
