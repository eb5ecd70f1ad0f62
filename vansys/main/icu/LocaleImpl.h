/// @file
/// The implementation of ICULocale, and the way from an ICULocale to ICU's locale.
#pragma once

#include "vansys/ICULocale.h"

#include "main/icu/Family.h"

#include <unicode/locid.h>

#include <memory>
#include <new>
#include <utility>

namespace vansys::detail
{

/// Owns a locale of ICU's on behalf of a family.
template <class Family>
class LocaleImpl
{
public:
    explicit LocaleImpl(std::unique_ptr<icu::Locale> locale) noexcept : m_locale(std::move(locale)) {}

    icu::Locale const &Wrapped() const noexcept { return *m_locale; }

private:
    std::unique_ptr<icu::Locale> m_locale; // never null
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
            // ICU's own new gives null when there is no memory, and its copies become bogus.
            std::unique_ptr<icu::Locale> copy(new icu::Locale(locale));
            if (!copy || copy->isBogus() != locale.isBogus())
                return nullptr;
            return std::unique_ptr<VanICU::ICULocale>(
                new VanICU::ICULocale(std::make_shared<LocaleImpl<Family>>(std::move(copy))));
        }
        catch (std::bad_alloc const &)
        {
            return nullptr;
        }
    }

    /// The locale that is wrapped; lasts as long as `locale` or one of its copies.
    static icu::Locale const &Unwrap(VanICU::ICULocale const &locale) noexcept;
};

} // namespace vansys::detail

namespace VanICU44
{
using ICULocale44Impl = vansys::detail::LocaleImpl<Family>;
}

namespace VanICU55
{
using ICULocale55Impl = vansys::detail::LocaleImpl<Family>;
}
