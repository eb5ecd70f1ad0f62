/// @file
/// Hashes of bytes for look-up tables and quick identity checks. None of them resists somebody who wants to
/// make collisions: for that see sha2.h.
///
/// All results are those of the published reference code on a little-endian machine, and so can be stored and
/// compared across machines. Data needs no alignment, and may be null when its length is 0. Nothing here
/// throws, allocates or keeps state: every function may be called from any thread.
#pragma once

#include "vansys/Export.h"

#include <cstdint>
#include <utility>

/// A 32-bit hash of `length` bytes, with `seed` as its initial value: Bob Jenkins' lookup2 ("hash()", 1996).
VANSYS_API std::uint32_t THash32(void const *data, unsigned int length, unsigned int seed) noexcept;

/// `THash32(data, length, 0xdeadbeef)`.
VANSYS_API std::uint32_t THash(void const *data, unsigned int length) noexcept;

/// Mixes `value` into the hash `seed`: `THash32` of the four bytes of `value`, low byte first. To combine the
/// hashes h1 and then h2, call it with (h1, h2). The order matters.
VANSYS_API std::uint32_t THashCombine(unsigned int value, unsigned int seed) noexcept;

/// The same function as `THashCombine`.
VANSYS_API std::uint32_t THashCombine32(unsigned int value, unsigned int seed) noexcept;

/// A 64-bit hash of `length` bytes: the first half of `THash128(data, length, seed, seed)`.
VANSYS_API std::uint64_t THash64(void const *data, unsigned int length, std::uint64_t seed) noexcept;

/// A 128-bit hash of `length` bytes, as its first and second half: Bob Jenkins' SpookyHash, version 2 (2012).
/// For data of some hundred bytes and more it is several times as fast as `THash32`.
VANSYS_API std::pair<std::uint64_t, std::uint64_t>
THash128(void const *data, unsigned int length, std::uint64_t seed1, std::uint64_t seed2) noexcept;
