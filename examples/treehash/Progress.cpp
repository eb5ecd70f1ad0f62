#include "Progress.h"

#include "Platform.h"

#include <vansys/TFormatStringCore.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <iterator>

namespace treehash
{

namespace
{

constexpr std::chrono::milliseconds DrawInterval{100};
constexpr double MaxShownSeconds = 99 * 3600.0;

/// "532 B", "1.4 MiB".
TStringCore ByteText(double bytes)
{
    static constexpr char const *Units[] = {" B", " KiB", " MiB", " GiB", " TiB", " PiB", " EiB"};
    std::size_t unit = 0;
    while (bytes >= 1024 && unit + 1 < std::size(Units))
    {
        bytes /= 1024;
        ++unit;
    }
    return TStringCore::number(bytes, 'f', unit == 0 ? 0 : 1).append(Units[unit]);
}

/// "0:07", "1:02:45".
TStringCore TimeText(double seconds)
{
    long const whole = std::lround(std::min(seconds, MaxShownSeconds));
    long const minutes = whole / 60;
    auto const twoDigits = [](long number) { return TStringCore::number(number, 10, 2, u'0'); };
    if (minutes < 60)
        return TFormatStringCore("%1:%2").arg(minutes).arg(twoDigits(whole % 60));
    return TFormatStringCore("%1:%2:%3")
        .arg(minutes / 60)
        .arg(twoDigits(minutes % 60), twoDigits(whole % 60));
}

} // namespace

Progress::Progress() : m_columns(TerminalColumns(stderr)) {}

Progress::~Progress()
{
    Hide();
}

void Progress::Start(std::uint64_t totalFiles, std::uint64_t totalBytes)
{
    m_totalFiles = totalFiles;
    m_totalBytes = totalBytes;
    m_start = Clock::now();
    m_nextDraw = m_start + DrawInterval;
}

void Progress::AddBytes(std::uint64_t count)
{
    m_bytes += count;
    if (!IsShown())
        return;
    Clock::time_point const now = Clock::now();
    if (now >= m_nextDraw)
        Draw(now);
}

void Progress::AddFile()
{
    ++m_files;
}

void Progress::Hide()
{
    if (!m_isDrawn)
        return;
    WriteMessage('\r' + std::string(LineLength(), ' ') + '\r');
    m_isDrawn = false;
}

void Progress::Draw(Clock::time_point now)
{
    std::string line = Line(std::chrono::duration<double>(now - m_start).count());
    line.resize(LineLength(), ' '); // Spaces are the way to erase that every terminal knows.
    WriteMessage('\r' + line);
    m_isDrawn = true;
    m_nextDraw = now + DrawInterval;
}

std::string Progress::Line(double elapsedSeconds) const
{
    // Files may have grown since they were counted.
    auto const total = static_cast<double>(std::max(m_totalBytes, m_bytes));
    auto const done = static_cast<double>(m_bytes);
    double const share = total > 0 ? done / total : 0;
    double const rate = elapsedSeconds > 0 ? done / elapsedSeconds : 0;

    TFormatStringCore format("%1%%  %2/%3 files  %4/%5  %6/s  %7 left");
    format.arg(static_cast<int>(share * 100)).arg(m_files).arg(m_totalFiles);
    format.arg(ByteText(done), ByteText(total), ByteText(rate));
    format.arg(rate > 0 ? TimeText((total - done) / rate) : "?");
    std::string text = format.result().toStdString();

    constexpr std::size_t MinBarLength = 10;
    constexpr std::size_t Frame = 3; // brackets and a space
    if (LineLength() < text.size() + Frame + MinBarLength)
        return text;
    std::size_t const barLength = std::min<std::size_t>(LineLength() - text.size() - Frame, 40);
    auto const filled = static_cast<std::size_t>(share * static_cast<double>(barLength));
    std::string line = "[";
    line.append(filled, '#').append(barLength - filled, '.').append("] ").append(text);
    return line;
}

} // namespace treehash
