/// @file
/// CrashText: text that is written where nothing may be allocated.
#pragma once

#include "main/diagnostics/Frames.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace vansys::detail
{

/// Collects text in a small buffer and gives it on in pieces. For the handler of a crash: uses no memory but
/// its own, and takes no lock.
class CrashText
{
public:
    /// Takes a piece, of at most `PieceSize` bytes. What it returns false for is lost, and so is all that
    /// follows.
    using Write = bool (*)(void *target, char const *text, std::size_t count) noexcept;

    /// As much as a pipe that can be written to takes at once.
    static constexpr std::size_t PieceSize = 4096;

    CrashText(Write write, void *target) noexcept : m_write(write), m_target(target) {}
    CrashText(CrashText const &) = delete;
    CrashText &operator=(CrashText const &) = delete;
    ~CrashText() { Flush(); }

    CrashText &operator+=(std::string_view text) noexcept;
    CrashText &operator+=(char c) noexcept { return *this += std::string_view(&c, 1); }

    /// In upper-case hexadecimal digits, with zeros before it where it has fewer than `width`.
    CrashText &Hex(std::uint64_t number, std::size_t width = 1) noexcept;
    CrashText &Decimal(std::uint64_t number, std::size_t width = 1) noexcept;

    /// Gives on what was collected. Returns whether all went well until now.
    bool Flush() noexcept;

private:
    CrashText &Number(std::uint64_t number, unsigned base, std::size_t width) noexcept;

    Write m_write;
    void *m_target;
    bool m_isLost = false;
    std::size_t m_count = 0;
    std::array<char, PieceSize> m_buffer;
};

/// What there is to say about a frame. What is unknown is empty.
struct CrashFrameLine
{
    std::size_t number = 0;
    std::uintptr_t programCounter = 0;
    std::string_view function;
    std::string_view file;
    unsigned line = 0;
    std::string_view module;
};

/// Adds the line that `TStackWalker` gives out for such a frame, with all its parts.
void AppendCrashFrame(CrashText &text, CrashFrameLine const &frame) noexcept;

/// The frames of the crashed thread, the innermost first. Of very many, those in the middle are not kept.
class CrashFrames
{
public:
    void Add(Frame const &frame) noexcept;

    /// Of all, with those that are not kept.
    std::size_t Total() const noexcept { return m_total; }
    std::size_t Innermost() const noexcept { return m_total < InnermostKept ? m_total : InnermostKept; }
    std::size_t LeftOut() const noexcept;

    /// Has to be a kept one.
    Frame At(std::size_t index) const noexcept;

private:
    static constexpr std::size_t InnermostKept = 192;
    static constexpr std::size_t OutermostKept = 64;

    std::size_t m_total = 0;
    std::array<Frame, InnermostKept> m_innermost{};
    std::array<Frame, OutermostKept> m_outermost{}; ///< those from InnermostKept on, in turns
};

/// Adds the lines of a stack. `append(number, frame)` adds the line of a frame.
template <class Append>
void AppendCrashStack(CrashText &text, CrashFrames const &frames, Append append) noexcept
{
    text += "stack:\n";
    for (std::size_t i = 0; i < frames.Total(); ++i)
    {
        if (i == frames.Innermost() && frames.LeftOut() > 0)
        {
            (text += '(').Decimal(frames.LeftOut()) += " frames left out)\n";
            i += frames.LeftOut();
        }
        append(i, frames.At(i));
    }
}

/// Adds the line of a frame of which only the address is known.
void AppendPlainFrame(CrashText &text, std::size_t number, Frame const &frame) noexcept;

/// Adds a time of day, given in seconds since 1970, in UTC: `2024-02-29T12:00:00Z`.
void AppendUtcTime(CrashText &text, std::int64_t seconds) noexcept;

/// The last line of each complete report.
inline constexpr std::string_view EndOfCrashReport = "end of crash report\n";

} // namespace vansys::detail
