/// @file
/// The implementation of ICULocale, and the way from an ICULocale to ICU's locale.
#pragma once

#include "vansys/ICULocale.h"

#include "main/icu/Wrapper.h"

#include <unicode/locid.h>

namespace vansys::detail
{

/// A locale of ICU's on behalf of a family. No `Wrapper`, as ICULocale is a value that shares it.
template <class Family>
struct LocaleImpl
{
    explicit LocaleImpl(icu::Locale const &locale) : wrapped(locale) {}

    LocaleImpl(LocaleImpl const &) = delete;
    LocaleImpl &operator=(LocaleImpl const &) = delete;

    icu::Locale const wrapped;
};

/// What the interface of ICULocale does not show.
class LocaleAccess
{
public:
    /// Wraps a copy of the locale; null when there is no memory.
    template <class Family>
    static std::unique_ptr<VanICU::ICULocale> Wrap(icu::Locale const &locale)
    {
        try
        {
            auto impl = std::make_shared<LocaleImpl<Family>>(locale);
            // ICU's copies become bogus when there is no memory.
            if (impl->wrapped.isBogus() != locale.isBogus())
                return nullptr;
            return std::unique_ptr<VanICU::ICULocale>(new VanICU::ICULocale(std::move(impl)));
        }
        catch (std::bad_alloc const &)
        {
            return nullptr;
        }
    }

    static icu::Locale const &Unwrap(VanICU::ICULocale const &locale) noexcept;
};

/// The locale that is wrapped; lasts as long as `locale` or one of its copies.
inline icu::Locale const &Unwrap(VanICU::ICULocale const &locale) noexcept
{
    return LocaleAccess::Unwrap(locale);
}

} // namespace vansys::detail

VANSYS_NAME_IMPLEMENTATIONS(Locale)
