#include "vansys/ICULocale.h"

#include "main/icu/Call.h"
#include "main/icu/LocaleImpl.h"
#include "main/icu/Text.h"

#include <new>

using vansys::detail::As;
using vansys::detail::LocaleAccess;
using vansys::detail::ToText;
using vansys::detail::WithSelectedFamily;

namespace vansys::detail
{

icu::Locale const &LocaleAccess::Unwrap(VanICU::ICULocale const &locale) noexcept
{
    using VanICU44::ICULocale44Impl;
    using VanICU55::ICULocale55Impl;
    if (auto const *const impl = std::any_cast<std::shared_ptr<ICULocale44Impl>>(&locale.m_impl))
        return (*impl)->Wrapped();
    return (*std::any_cast<std::shared_ptr<ICULocale55Impl>>(&locale.m_impl))->Wrapped();
}

} // namespace vansys::detail

namespace
{

std::unique_ptr<VanICU::ICULocale> wrap(icu::Locale const &locale)
{
    return WithSelectedFamily([&](auto family) { return LocaleAccess::Wrap<decltype(family)>(locale); });
}

/// The locale that `Get` of ICU gives, wrapped once for each family. A local static is made by one thread
/// while others wait, and by the next one when making it throws; after a throw, MinGW's std::call_once never
/// returns. It is never destroyed, so that it outlives every user.
template <class Family, auto Get>
VanICU::ICULocale const &namedOfFamily()
{
    static VanICU::ICULocale const *const locale = []
    {
        auto wrapped = LocaleAccess::Wrap<Family>(Get());
        if (!wrapped)
            throw std::bad_alloc();
        return wrapped.release();
    }();
    return *locale;
}

template <auto Get>
VanICU::ICULocale const &named()
{
    return WithSelectedFamily([](auto family) -> auto & { return namedOfFamily<decltype(family), Get>(); });
}

icu::Locale const &unwrap(VanICU::ICULocale const &locale) noexcept
{
    return LocaleAccess::Unwrap(locale);
}

} // namespace

namespace VanICU
{

std::unique_ptr<ICULocale> ICULocale::createInstance()
{
    return wrap(icu::Locale());
}

std::unique_ptr<ICULocale> ICULocale::createInstance(char const *language, char const *country,
                                                     char const *variant, char const *keywords)
{
    return wrap(icu::Locale(language, country, variant, keywords));
}

std::unique_ptr<ICULocale> ICULocale::createFromName(char const *name)
{
    return wrap(icu::Locale::createFromName(name));
}

std::unique_ptr<ICULocale> ICULocale::getDefault()
{
    return wrap(icu::Locale::getDefault());
}

std::unique_ptr<ICULocale> ICULocale::getRoot()
{
    return wrap(icu::Locale::getRoot());
}

void ICULocale::setDefault(ICULocale const &locale, ICUErrorCode &status)
{
    icu::Locale::setDefault(unwrap(locale), *As<UErrorCode *>(&status));
}

std::vector<std::unique_ptr<ICULocale>> ICULocale::getAvailableLocales(int &count)
{
    int available = 0;
    icu::Locale const *const locales = icu::Locale::getAvailableLocales(available);
    std::vector<std::unique_ptr<ICULocale>> result;
    result.reserve(static_cast<std::size_t>(available));
    for (int i = 0; i < available; ++i)
    {
        result.push_back(wrap(locales[i]));
        if (!result.back())
            throw std::bad_alloc();
    }
    count = available;
    return result;
}

ICULocale const &ICULocale::getUS()
{
    return named<&icu::Locale::getUS>();
}

ICULocale const &ICULocale::getCanada()
{
    return named<&icu::Locale::getCanada>();
}

ICULocale const &ICULocale::getCanadaFrench()
{
    return named<&icu::Locale::getCanadaFrench>();
}

ICULocale const &ICULocale::getChina()
{
    return named<&icu::Locale::getChina>();
}

ICULocale const &ICULocale::getPRC()
{
    return named<&icu::Locale::getPRC>();
}

ICULocale const &ICULocale::getJapan()
{
    return named<&icu::Locale::getJapan>();
}

ICULocale const &ICULocale::getKorea()
{
    return named<&icu::Locale::getKorea>();
}

ICULocale::ICULocale(std::any impl) noexcept : m_impl(std::move(impl)) {}

ICULocale::ICULocale(ICULocale const &other) = default;

ICULocale &ICULocale::operator=(ICULocale const &other) = default;

ICULocale::~ICULocale() = default;

bool ICULocale::isBogus() const
{
    return unwrap(*this).isBogus();
}

char const *ICULocale::getName() const
{
    return unwrap(*this).getName();
}

char const *ICULocale::getBaseName() const
{
    return unwrap(*this).getBaseName();
}

char const *ICULocale::getLanguage() const
{
    return unwrap(*this).getLanguage();
}

char const *ICULocale::getScript() const
{
    return unwrap(*this).getScript();
}

char const *ICULocale::getCountry() const
{
    return unwrap(*this).getCountry();
}

char const *ICULocale::getVariant() const
{
    return unwrap(*this).getVariant();
}

char const *ICULocale::getISO3Language() const
{
    return unwrap(*this).getISO3Language();
}

char const *ICULocale::getISO3Country() const
{
    return unwrap(*this).getISO3Country();
}

unsigned int ICULocale::getLCID() const
{
    return unwrap(*this).getLCID();
}

TStringCore ICULocale::getDisplayName() const
{
    icu::UnicodeString name;
    return ToText(unwrap(*this).getDisplayName(name));
}

TStringCore ICULocale::getDisplayName(ICULocale const &inLocale) const
{
    icu::UnicodeString name;
    return ToText(unwrap(*this).getDisplayName(unwrap(inLocale), name));
}

TStringCore ICULocale::getDisplayLanguage() const
{
    icu::UnicodeString language;
    return ToText(unwrap(*this).getDisplayLanguage(language));
}

TStringCore ICULocale::getDisplayLanguage(ICULocale const &inLocale) const
{
    icu::UnicodeString language;
    return ToText(unwrap(*this).getDisplayLanguage(unwrap(inLocale), language));
}

TStringCore ICULocale::getDisplayCountry() const
{
    icu::UnicodeString country;
    return ToText(unwrap(*this).getDisplayCountry(country));
}

TStringCore ICULocale::getDisplayCountry(ICULocale const &inLocale) const
{
    icu::UnicodeString country;
    return ToText(unwrap(*this).getDisplayCountry(unwrap(inLocale), country));
}

bool ICULocale::equals(ICULocale const &other) const
{
    return unwrap(*this) == unwrap(other);
}

} // namespace VanICU
