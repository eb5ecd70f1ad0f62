/// @file
/// TCapturedStack: where a thread is, to be turned into text later.
#pragma once

#include "vansys/Export.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

/// The return addresses on the stack of a thread at one moment.
///
/// To capture them takes a few loads for each frame, no allocation and no lock of the library: it can be done
/// where something may be wrong, each time, on any thread. Only the text costs something, and can wait:
///
///     TCapturedStack const whereLocked = TCapturedStack::Capture();
///     ...
///     if (heldTooLong)
///         WriteLog(whereLocked.Text()); // on any other thread, too
///
/// It is a plain value of fixed size, 520 bytes where addresses have 64 bits, that may be copied with
/// `memcpy`, also to another process: there, the addresses mean nothing.
///
/// **Threads.** Any thread may read it, also several at once, and turn it into text; that takes turns with
/// other look-ups of symbols.
///
/// **Time.** An address is described by the modules that are loaded when the text is made. One of a module
/// that was unloaded meanwhile is unknown; where another module took its place, it looks like one of that.
class VANSYS_API TCapturedStack
{
public:
    /// So many frames are kept, the innermost ones.
    static constexpr std::size_t MaxFrames = 64;

    /// No frames.
    TCapturedStack() noexcept = default;

    /// The stack of the calling thread, without the first `skip` frames and at most `maxFrames`, or
    /// `MaxFrames`, of them. With `skip` 0, the first one is the function that calls this.
    static TCapturedStack Capture(std::size_t skip = 0, std::size_t maxFrames = MaxFrames) noexcept;

    /// The stack of the calling thread, beginning with the frame that `returnAddress` returns to: the caller
    /// of a function is what `__builtin_return_address(0)` in it says, wherever that captures. Where no frame
    /// returns there, it begins with the function that calls this.
    static TCapturedStack CaptureFrom(void const *returnAddress) noexcept;

    std::size_t FrameCount() const noexcept { return m_count; }
    bool IsEmpty() const noexcept { return m_count == 0; }

    /// The return addresses, the innermost first: the call of each frame is what lies before its address. The
    /// pointer is valid as long as this object.
    std::uintptr_t const *Frames() const noexcept { return m_frames.data(); }

    /// One line for each frame, without a line end, as `TStackWalker` gives them out, numbered from 0. Frames
    /// in sources that the walker leaves out have no line. Unlike its lines, they go on to the outermost
    /// frame.
    ///
    /// Throws `std::bad_alloc`. What cannot be looked up, for want of memory or of file descriptors, is
    /// described as unknown.
    std::vector<std::string> Lines() const;

    /// The same lines as one text, each with a line feed behind it.
    std::string Text() const;

    friend bool operator==(TCapturedStack const &a, TCapturedStack const &b) noexcept
    {
        return a.m_count == b.m_count && a.m_frames == b.m_frames; // what is not used is 0
    }
    friend bool operator!=(TCapturedStack const &a, TCapturedStack const &b) noexcept { return !(a == b); }

private:
    std::array<std::uintptr_t, MaxFrames> m_frames{};
    std::size_t m_count = 0;
};

static_assert(std::is_trivially_copyable_v<TCapturedStack>, "so that it can be kept anywhere");
