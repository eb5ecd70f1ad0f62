#include "vansys/ICULocale.h"

#include "main/icu/LocaleImpl.h"
#include "main/icu/Text.h"

using vansys::detail::IcuStatus;
using vansys::detail::LocaleAccess;
using vansys::detail::ToText;
using vansys::detail::Unwrap;
using vansys::detail::WithSelectedFamily;

icu::Locale const &LocaleAccess::Unwrap(VanICU::ICULocale const &locale) noexcept
{
    using VanICU44::ICULocale44Impl;
    using VanICU55::ICULocale55Impl;
    if (auto const *const impl = std::any_cast<std::shared_ptr<ICULocale44Impl>>(&locale.m_impl))
        return (*impl)->wrapped;
    return (*std::any_cast<std::shared_ptr<ICULocale55Impl>>(&locale.m_impl))->wrapped;
}

namespace VanICU
{

namespace
{

std::unique_ptr<ICULocale> WrapLocale(icu::Locale const &locale)
{
    return WithSelectedFamily([&](auto family) { return LocaleAccess::Wrap<decltype(family)>(locale); });
}

/// The locale that `Get` of ICU gives, wrapped once for each family. A local static is made by one thread
/// while others wait, and by the next one when making it throws; after a throw, MinGW's std::call_once never
/// returns. It is never destroyed, so that it outlives every user.
template <class Family, auto Get>
ICULocale const &NamedOfFamily()
{
    static ICULocale const *const locale = []
    {
        auto wrapped = LocaleAccess::Wrap<Family>(Get());
        if (!wrapped)
            throw std::bad_alloc();
        return wrapped.release();
    }();
    return *locale;
}

template <auto Get>
ICULocale const &Named()
{
    return WithSelectedFamily([](auto family) -> auto & { return NamedOfFamily<decltype(family), Get>(); });
}

} // namespace

std::unique_ptr<ICULocale> ICULocale::createInstance()
{
    return WrapLocale(icu::Locale());
}

std::unique_ptr<ICULocale> ICULocale::createInstance(char const *language, char const *country,
                                                     char const *variant, char const *keywords)
{
    return WrapLocale(icu::Locale(language, country, variant, keywords));
}

std::unique_ptr<ICULocale> ICULocale::createFromName(char const *name)
{
    return WrapLocale(icu::Locale::createFromName(name));
}

std::unique_ptr<ICULocale> ICULocale::getDefault()
{
    return WrapLocale(icu::Locale::getDefault());
}

std::unique_ptr<ICULocale> ICULocale::getRoot()
{
    return WrapLocale(icu::Locale::getRoot());
}

void ICULocale::setDefault(ICULocale const &locale, ICUErrorCode &status)
{
    icu::Locale::setDefault(Unwrap(locale), IcuStatus(status));
}

std::vector<std::unique_ptr<ICULocale>> ICULocale::getAvailableLocales(int &count)
{
    int available = 0;
    icu::Locale const *const locales = icu::Locale::getAvailableLocales(available);
    std::vector<std::unique_ptr<ICULocale>> result;
    result.reserve(static_cast<std::size_t>(available));
    for (int i = 0; i < available; ++i)
    {
        result.push_back(WrapLocale(locales[i]));
        if (!result.back())
            throw std::bad_alloc();
    }
    count = available;
    return result;
}

ICULocale const &ICULocale::getUS()
{
    return Named<&icu::Locale::getUS>();
}

ICULocale const &ICULocale::getCanada()
{
    return Named<&icu::Locale::getCanada>();
}

ICULocale const &ICULocale::getCanadaFrench()
{
    return Named<&icu::Locale::getCanadaFrench>();
}

ICULocale const &ICULocale::getChina()
{
    return Named<&icu::Locale::getChina>();
}

ICULocale const &ICULocale::getPRC()
{
    return Named<&icu::Locale::getPRC>();
}

ICULocale const &ICULocale::getJapan()
{
    return Named<&icu::Locale::getJapan>();
}

ICULocale const &ICULocale::getKorea()
{
    return Named<&icu::Locale::getKorea>();
}

ICULocale::ICULocale(std::any impl) noexcept : m_impl(std::move(impl)) {}

ICULocale::ICULocale(ICULocale const &other) = default;

ICULocale &ICULocale::operator=(ICULocale const &other) = default;

ICULocale::~ICULocale() = default;

bool ICULocale::isBogus() const
{
    return Unwrap(*this).isBogus();
}

char const *ICULocale::getName() const
{
    return Unwrap(*this).getName();
}

char const *ICULocale::getBaseName() const
{
    return Unwrap(*this).getBaseName();
}

char const *ICULocale::getLanguage() const
{
    return Unwrap(*this).getLanguage();
}

char const *ICULocale::getScript() const
{
    return Unwrap(*this).getScript();
}

char const *ICULocale::getCountry() const
{
    return Unwrap(*this).getCountry();
}

char const *ICULocale::getVariant() const
{
    return Unwrap(*this).getVariant();
}

char const *ICULocale::getISO3Language() const
{
    return Unwrap(*this).getISO3Language();
}

char const *ICULocale::getISO3Country() const
{
    return Unwrap(*this).getISO3Country();
}

unsigned int ICULocale::getLCID() const
{
    return Unwrap(*this).getLCID();
}

TStringCore ICULocale::getDisplayName() const
{
    icu::UnicodeString name;
    return ToText(Unwrap(*this).getDisplayName(name));
}

TStringCore ICULocale::getDisplayName(ICULocale const &inLocale) const
{
    icu::UnicodeString name;
    return ToText(Unwrap(*this).getDisplayName(Unwrap(inLocale), name));
}

TStringCore ICULocale::getDisplayLanguage() const
{
    icu::UnicodeString language;
    return ToText(Unwrap(*this).getDisplayLanguage(language));
}

TStringCore ICULocale::getDisplayLanguage(ICULocale const &inLocale) const
{
    icu::UnicodeString language;
    return ToText(Unwrap(*this).getDisplayLanguage(Unwrap(inLocale), language));
}

TStringCore ICULocale::getDisplayCountry() const
{
    icu::UnicodeString country;
    return ToText(Unwrap(*this).getDisplayCountry(country));
}

TStringCore ICULocale::getDisplayCountry(ICULocale const &inLocale) const
{
    icu::UnicodeString country;
    return ToText(Unwrap(*this).getDisplayCountry(Unwrap(inLocale), country));
}

bool ICULocale::equals(ICULocale const &other) const
{
    return Unwrap(*this) == Unwrap(other);
}

} // namespace VanICU
