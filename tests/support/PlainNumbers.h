/// @file
/// The C library's numbers without its locale, to compare the library's with.
#pragma once

#include <clocale>
#include <string>

/// While one lives, the C library reads and prints numbers as in the C locale.
class PlainNumbers
{
public:
    PlainNumbers() { std::setlocale(LC_NUMERIC, "C"); }
    ~PlainNumbers() { std::setlocale(LC_NUMERIC, m_before.c_str()); }
    PlainNumbers(PlainNumbers const &) = delete;
    PlainNumbers &operator=(PlainNumbers const &) = delete;

private:
    std::string const m_before = std::setlocale(LC_NUMERIC, nullptr);
};
