/// @file
/// The progress bar.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace treehash
{

/// One line on standard error that shows how far the work is, redrawn a few times a second. Does nothing when
/// standard error is no terminal.
class Progress
{
public:
    Progress();
    ~Progress();
    Progress(Progress const &) = delete;
    Progress &operator=(Progress const &) = delete;

    /// Whether anybody sees it; if not, the totals need not be found out.
    bool IsShown() const { return m_columns > 0; }

    /// The clock starts here.
    void Start(std::uint64_t totalFiles, std::uint64_t totalBytes);

    void AddBytes(std::uint64_t count);
    void AddFile();

    /// Takes the line off the terminal, so that other output can be written. It comes back by itself.
    void Hide();

private:
    using Clock = std::chrono::steady_clock;

    /// The last column stays free: some terminals begin a new line when it is written to.
    std::size_t LineLength() const { return static_cast<std::size_t>(m_columns - 1); }

    void Draw(Clock::time_point now);
    std::string Line(double elapsedSeconds) const;

    int const m_columns;
    bool m_isDrawn = false;
    Clock::time_point m_start;
    Clock::time_point m_nextDraw;
    std::uint64_t m_totalFiles = 0;
    std::uint64_t m_totalBytes = 0;
    std::uint64_t m_files = 0;
    std::uint64_t m_bytes = 0;
};

} // namespace treehash
