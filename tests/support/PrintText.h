/// @file
/// How GoogleTest shows a text: quoted, with escapes. Each source of each test program includes it, by an
/// option of the compiler, so that all of them print alike.
#pragma once

#include "vansys/TStringCore.h"

#include <ostream>

inline void PrintTo(TStringCore const &text, std::ostream *out)
{
    *out << "u\"";
    for (TCodeUnit const &unit : text)
    {
        if (unit == u'"' || unit == u'\\')
            *out << '\\' << static_cast<char>(unit);
        else if (unit >= 0x20 && unit < 0x7F)
            *out << static_cast<char>(unit);
        else
        {
            *out << "\\u";
            for (int shift = 12; shift >= 0; shift -= 4)
                *out << "0123456789ABCDEF"[unit >> shift & 0xF];
        }
    }
    *out << '"';
}
