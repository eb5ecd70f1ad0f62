/// @file
/// Frames: the addresses on the stacks of this process's threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace vansys::detail
{

/// One frame of a stack.
struct Frame
{
    std::uintptr_t programCounter = 0;

    /// Whether the program counter is the instruction that comes next, as in an interrupted function. Else it
    /// is a return address, and the frame is at the instruction before it.
    bool isInstruction = false;

    /// An address in the instruction that the frame is at.
    std::uintptr_t Instruction() const noexcept
    {
        return isInstruction || programCounter == 0 ? programCounter : programCounter - 1;
    }
};

/// The frames of one thread, the innermost first.
struct ThreadStack
{
    enum class Answer
    {
        Given,
        None, ///< the thread did not stop in time
        Gone  ///< no such thread, or none that may be looked at
    };

    unsigned threadId = 0;
    Answer answer = Answer::Gone;

    /// Whether the last frame is the outermost one: it returns to nobody. Else the walk ended for another
    /// reason.
    bool isComplete = false;

    std::vector<Frame> frames;
};

/// More frames than this are left out.
inline constexpr std::size_t MaxFrames = 16384;

/// How the threads are stopped: the meaning is that of `TStackWalker::ThreadAccess`.
enum class ThreadAccess
{
    Automatic,
    Attach,
    Signal
};

unsigned CurrentProcessId() noexcept;
unsigned CurrentThreadId() noexcept;

/// The ids of all threads of this process. Empty when they cannot be found out. Throws `std::bad_alloc`.
std::vector<unsigned> ListThreads();

/// The stack of the calling thread, beginning with the frame that `innermost`, a return address, returns to;
/// with all frames when there is none. Throws `std::bad_alloc`.
ThreadStack WalkCallingThread(void const *innermost);

/// The stacks of these threads of this process, none of them the calling one, in their order. One time limit
/// of a second holds for all of them together. One walk at a time: others wait for it. Throws
/// `std::bad_alloc`.
std::vector<ThreadStack> WalkThreads(std::vector<unsigned> const &threadIds, ThreadAccess access);

/// Has the symbol handler started, where the system has one, with this search path of the host's own, and
/// the list of modules up to date.
bool LoadModules(std::string const &searchPath);

} // namespace vansys::detail
