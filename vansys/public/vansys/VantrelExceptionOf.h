/// @file
/// VantrelExceptionOf: what each class of exceptions derives from.
#pragma once

#include "vansys/Forward.h"
#include "vansys/VantrelException.h"

#include <type_traits>

// The one Clone hides the other on purpose.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Woverloaded-virtual"

namespace vansys::detail
{

/// Overrides what copies an exception, for the type `Derived`.
template <class Derived, class Base>
class CopiesAs : public Base
{
public:
    using Base::Base;

    VantrelException *Clone() const override { return new Derived(static_cast<Derived const &>(*this)); }

    [[noreturn]] void Throw() const override { throw Derived(static_cast<Derived const &>(*this)); }
};

} // namespace vansys::detail

/// The base of an exception class, which gets from it the constructors of `Base` (all but the default one),
/// and `Clone` and `Throw` for its own type:
///
///     class ParseException : public VantrelExceptionOf<ParseException>
///     {
///     public:
///         using VantrelExceptionOf::VantrelExceptionOf;
///     };
///
/// `Base` is `VantrelException` or any class derived from it. A class that derives from `ParseException`
/// names it there: `VantrelExceptionOf<LineException, ParseException>`.
///
/// A class that a library exports declares its destructor and defines it in a source file, so that there is
/// one vtable and one type information of it, in that library.
template <class Derived, class Base>
class VantrelExceptionOf : public vansys::detail::CopiesAs<Derived, Base>
{
    static_assert(std::is_base_of_v<VantrelException, Base>, "only exceptions have messages");

public:
    using vansys::detail::CopiesAs<Derived, Base>::CopiesAs;

    /// As `VantrelException::Clone`, with the type that is known here. It calls that function, which still is
    /// the one to override. A template, as it would be an override itself otherwise, and an override cannot
    /// return a pointer to `Derived` before that class is complete.
    template <class = void>
    Derived *Clone() const
    {
        return static_cast<Derived *>(static_cast<VantrelException const &>(*this).Clone());
    }
};

#pragma GCC diagnostic pop
