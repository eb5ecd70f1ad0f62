#include "main/diagnostics/CrashText.h"

#include <algorithm>
#include <chrono>

namespace vansys::detail
{

CrashText &CrashText::operator+=(std::string_view text) noexcept
{
    while (!text.empty())
    {
        if (m_count == m_buffer.size())
            Flush();
        std::size_t const count = std::min(text.size(), m_buffer.size() - m_count);
        std::copy_n(text.data(), count, m_buffer.data() + m_count);
        m_count += count;
        text.remove_prefix(count);
    }
    return *this;
}

CrashText &CrashText::Hex(std::uint64_t number, std::size_t width) noexcept
{
    return Number(number, 16, width);
}

CrashText &CrashText::Decimal(std::uint64_t number, std::size_t width) noexcept
{
    return Number(number, 10, width);
}

CrashText &CrashText::Number(std::uint64_t number, unsigned base, std::size_t width) noexcept
{
    std::array<char, 20> digits; // as many as the largest number has in base 10
    std::size_t begin = digits.size();
    do
    {
        digits[--begin] = "0123456789ABCDEF"[number % base];
        number /= base;
    } while (number != 0);
    while (digits.size() - begin < std::min(width, digits.size()))
        digits[--begin] = '0';
    return *this += std::string_view(digits.data() + begin, digits.size() - begin);
}

bool CrashText::Flush() noexcept
{
    if (m_count != 0 && !m_isLost)
        m_isLost = !m_write(m_target, m_buffer.data(), m_count);
    m_count = 0;
    return !m_isLost;
}

void AppendCrashFrame(CrashText &text, CrashFrameLine const &frame) noexcept
{
    (text += "0x").Hex(frame.number, 8);
    if (frame.file.empty())
    {
        (text += " 0x").Hex(frame.programCounter) += ' ';
        text += frame.module.empty() ? std::string_view("(module name not available)") : frame.module;
    }
    else
    {
        ((text += ' ') += frame.file) += '(';
        (text.Decimal(frame.line) += "): ") += frame.module;
    }
    text += '!';
    text += frame.function.empty() ? std::string_view("(symbol not available)") : frame.function;
    text += '\n';
}

void CrashFrames::Add(Frame const &frame) noexcept
{
    if (m_total < InnermostKept)
        m_innermost[m_total] = frame;
    else
        m_outermost[(m_total - InnermostKept) % OutermostKept] = frame;
    ++m_total;
}

std::size_t CrashFrames::LeftOut() const noexcept
{
    return m_total - std::min(m_total, InnermostKept + OutermostKept);
}

Frame CrashFrames::At(std::size_t index) const noexcept
{
    return index < InnermostKept ? m_innermost[index] : m_outermost[(index - InnermostKept) % OutermostKept];
}

void AppendPlainFrame(CrashText &text, std::size_t number, Frame const &frame) noexcept
{
    CrashFrameLine line;
    line.number = number;
    line.programCounter = frame.programCounter;
    AppendCrashFrame(text, line);
}

void AppendUtcTime(CrashText &text, std::int64_t seconds) noexcept
{
    using namespace std::chrono;
    sys_seconds const time{std::chrono::seconds(seconds)};
    auto const day = floor<days>(time);
    year_month_day const date(day);
    hh_mm_ss const clock(time - day);
    text.Decimal(static_cast<unsigned>(int(date.year())), 4) += '-';
    text.Decimal(unsigned(date.month()), 2) += '-';
    text.Decimal(unsigned(date.day()), 2) += 'T';
    text.Decimal(static_cast<std::uint64_t>(clock.hours().count()), 2) += ':';
    text.Decimal(static_cast<std::uint64_t>(clock.minutes().count()), 2) += ':';
    text.Decimal(static_cast<std::uint64_t>(clock.seconds().count()), 2) += 'Z';
}

} // namespace vansys::detail
