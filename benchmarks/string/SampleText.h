/// @file
/// Prose to convert between UTF-8 and UTF-16.
#pragma once

#include <cstddef>
#include <string>

namespace bench
{

enum class Script
{
    Ascii,      ///< English
    MixedLatin, ///< German and French: one letter in twelve or so is not ASCII
    Cjk         ///< Chinese, punctuation included: sequences of three bytes only
};

/// UTF-8 prose of `size` bytes, or one or two less where a character would be cut. The same for each call.
std::string SampleText(Script script, std::size_t size);

} // namespace bench
