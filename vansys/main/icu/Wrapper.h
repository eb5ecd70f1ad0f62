/// @file
/// What the wrapper classes are made of: `StringImpl.h` and `ICUString.cpp` show how.
#pragma once

#include "main/icu/Call.h"
#include "main/icu/Check.h"
#include "main/icu/Family.h"

#include <memory>
#include <new>
#include <utility>

namespace vansys::detail
{

/// Owns an object of ICU's behind an interface of the layer. The implementation of the interface, a template
/// over the family, derives from it.
///
/// What takes an `Interface` and needs the object of ICU's finds it by a dynamic_cast to this class, which
/// is the same for both families.
template <class InterfaceType, class Icu>
class Wrapper : public InterfaceType
{
public:
    using Interface = InterfaceType;

    /// The object may be null where the factory leaves it to its caller to look at the status.
    explicit Wrapper(std::unique_ptr<Icu> object) noexcept : m_object(std::move(object)) {}

    Wrapper(Wrapper const &) = delete;
    Wrapper &operator=(Wrapper const &) = delete;

    // For operations that cannot fail, of classes whose factories never wrap null.
    Icu &Object() noexcept { return *m_object; }
    Icu const &Object() const noexcept { return *m_object; }

protected:
    /// For operations that have no status for their caller: calls `function(object, status)` and returns what
    /// that returns. Reports a failure, or that there is no object, in one of the sources that a family
    /// names; a hook may let that pass, and without an object the result is a zero then.
    template <class Function>
    auto Checked(char const *source, int line, Function const &function) const
    {
        UErrorCode status = U_ZERO_ERROR;
        using Result = decltype(function(*m_object, status));
        if (!CheckPointer(m_object.get(), source, line))
            return Result();
        auto const report = [&] { CheckStatus(status, source, line); };
        if constexpr (std::is_void_v<Result>)
        {
            function(*m_object, status);
            report();
        }
        else
        {
            Result result = function(*m_object, status);
            report();
            return result;
        }
    }

private:
    std::unique_ptr<Icu> m_object;
};

/// Wraps an object for the selected family, by its `Impl`. Null when there is no memory for the wrapper.
template <template <class Family> class Impl, class Icu>
auto Wrap(std::unique_ptr<Icu> object)
{
    return WithSelectedFamily(
        [&](auto family)
        {
            using Selected = Impl<decltype(family)>;
            using Interface = typename Selected::Interface;
            return std::unique_ptr<Interface>(new (std::nothrow) Selected(std::move(object)));
        });
}

/// A status of the caller's, for ICU to set.
inline UErrorCode &IcuStatus(VanICU::ICUErrorCode &status) noexcept
{
    return *As<UErrorCode *>(&status);
}

} // namespace vansys::detail

/// Names the implementations of `ICU`*name* in both families: `VanICU44::ICU`*name*`44Impl` and its like.
#define VANSYS_NAME_IMPLEMENTATIONS(name)                                                                    \
    namespace VanICU44                                                                                       \
    {                                                                                                        \
    using ICU##name##44Impl = vansys::detail::name##Impl<Family>;                                            \
    }                                                                                                        \
    namespace VanICU55                                                                                       \
    {                                                                                                        \
    using ICU##name##55Impl = vansys::detail::name##Impl<Family>;                                            \
    }
