/// @file
/// TPathCore and the paths of the standard library, which opens files by them on every system:
///
///     std::ofstream stream(PathToFilesystem(folder / u"report.txt"));
#pragma once

#include "vansys/TPathCore.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <type_traits>

namespace vansys::detail
{

// Templates, so that only what fits the host's paths is compiled.

template <class Native>
TPathCore PathFromNative(Native const &native)
{
    if constexpr (std::is_same_v<typename Native::value_type, char>)
        return TPathCore::fromNativeBytes(native);
    else
        return TPathCore(TStringCore(std::basic_string_view<typename Native::value_type>(native)));
}

template <class Path>
Path PathToNative(TPathCore const &path)
{
    if constexpr (std::is_same_v<typename Path::value_type, char>)
        return Path(path.toNativeBytes());
    else
    {
        TStringCore const text = path.ForHost();
        return Path(typename Path::string_type(text.cbegin(), text.cend()));
    }
}

} // namespace vansys::detail

/// The path of the same file. On Linux, exactly the same bytes come back by `PathToFilesystem`, whatever they
/// are (`TPathCore::fromNativeBytes`). On Windows, the same units come back, with back slashes, and without
/// one at the end that is no root directory.
inline TPathCore PathFromFilesystem(std::filesystem::path const &path)
{
    return vansys::detail::PathFromNative(path.native());
}

/// The path of the same file, in the host's own form: `TPathCore::ForHost` on Windows, `toNativeBytes`
/// elsewhere.
inline std::filesystem::path PathToFilesystem(TPathCore const &path)
{
    return vansys::detail::PathToNative<std::filesystem::path>(path);
}
