/// @file
/// Texts for tests: random ones, and ones in memory that ends where they end.
#pragma once

#include "vansys/TStringCore.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <vector>

/// Texts of the units of an alphabet, the same in each run.
class RandomText
{
public:
    explicit RandomText(std::u16string alphabet) : m_alphabet(std::move(alphabet)) {}

    int number(int low, int high)
    {
        return low + static_cast<int>(m_random() % static_cast<unsigned>(high - low + 1));
    }

    std::u16string text(int maxLength)
    {
        std::u16string result(static_cast<std::size_t>(number(0, maxLength)), u' ');
        for (char16_t &unit : result)
            unit = m_alphabet[m_random() % m_alphabet.size()];
        return result;
    }

private:
    std::u16string m_alphabet;
    std::mt19937 m_random{20040229};
};

/// Units in a block of the heap that ends with them, so that the address sanitizer sees who reads on.
class ExactUnits
{
public:
    explicit ExactUnits(std::u16string const &text)
        : m_units(new TCodeUnit[text.size()]),
          m_end(std::copy(text.begin(), text.end(), m_units.get()))
    {
    }

    TCodeUnit const *data() const { return m_units.get(); }
    int count() const { return static_cast<int>(m_end - data()); }

private:
    std::unique_ptr<TCodeUnit[]> const m_units;
    TCodeUnit const *const m_end;
};

/// Text of the other wide type, with a zero behind it: UTF-16 or code points, as that type is.
inline std::vector<TWideTwin> TwinElements(TStringCore const &text)
{
    std::vector<TWideTwin> result(static_cast<std::size_t>(text.length()) + 1);
    result.resize(static_cast<std::size_t>(text.toWCharArray(result.data(), text.length() + 1)) + 1);
    return result;
}
