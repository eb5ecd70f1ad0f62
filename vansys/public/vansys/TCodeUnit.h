/// @file
/// The UTF-16 code unit, and the other wide character type of the platform.
#pragma once

/// One UTF-16 code unit: what `TStringCore` is made of. It is the type that the platform's own wide
/// interfaces take where those are UTF-16, so that text reaches them without conversion.
#if defined(_WIN32)
using TCodeUnit = wchar_t;
#else
using TCodeUnit = char16_t;
#endif

/// The wide type that is not `TCodeUnit`. Every operation on `TCodeUnit` text has a twin for it.
///
/// Where both are 16 bits wide (Windows: `char16_t`), twin text is UTF-16 and is used as it stands.
/// Elsewhere it is `wchar_t` and holds one code point per element (UTF-32): it is converted, and counts
/// that go with it are counts of `wchar_t`.
#if defined(_WIN32)
using TWideTwin = char16_t;
#else
using TWideTwin = wchar_t;
#endif

static_assert(sizeof(TCodeUnit) == 2, "TCodeUnit holds one UTF-16 code unit");
