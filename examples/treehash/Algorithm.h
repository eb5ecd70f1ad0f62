/// @file
/// The digests that the program offers.
#pragma once

#include <vansys/sha2.h>

#include <cstddef>
#include <string_view>

namespace treehash
{

struct Algorithm
{
    std::string_view name;
    sha2::SHA_TYPE type;
    std::size_t digestLength; ///< In hexadecimal digits; no two algorithms have the same.
};

inline constexpr Algorithm Algorithms[] = {{"sha1", sha2::SHA1, 40},
                                           {"sha224", sha2::SHA224, 56},
                                           {"sha256", sha2::SHA256, 64},
                                           {"sha384", sha2::SHA384, 96},
                                           {"sha512", sha2::SHA512, 128}};

inline constexpr Algorithm const &DefaultAlgorithm = Algorithms[2];

/// Null when there is none of that name.
constexpr Algorithm const *FindAlgorithm(std::string_view name)
{
    for (Algorithm const &algorithm : Algorithms)
        if (algorithm.name == name)
            return &algorithm;
    return nullptr;
}

/// Null when there is none with digests of that many hexadecimal digits.
constexpr Algorithm const *FindAlgorithm(std::size_t digestLength)
{
    for (Algorithm const &algorithm : Algorithms)
        if (algorithm.digestLength == digestLength)
            return &algorithm;
    return nullptr;
}

} // namespace treehash
