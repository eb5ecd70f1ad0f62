/// @file
/// The names of functions as they are in the source, from those in symbol tables.
#pragma once

#include <string>
#include <string_view>

namespace vansys::detail
{

/// The name with scopes, parameters and, of templates, the result. A name that is not one of C++ stays as it
/// is. Throws `std::bad_alloc`.
std::string Undecorate(char const *symbol);

/// The part of an undecorated name that names the function: without its result, its parameters and what
/// follows them, with its scopes and the arguments of templates.
std::string_view NameOnly(std::string_view undecorated) noexcept;

} // namespace vansys::detail
