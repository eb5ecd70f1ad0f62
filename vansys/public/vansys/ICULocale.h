/// @file
/// ICULocale: a language, with its country and whatever else decides how text is written.
#pragma once

#include "vansys/Export.h"
#include "vansys/ICUTypes.h"
#include "vansys/TStringCore.h"

#include <any>
#include <memory>
#include <vector>

namespace vansys::detail
{
class LocaleAccess;
}

namespace VanICU
{

/// A locale, such as "de_AT". It cannot be changed, and its copies share what it wraps.
///
/// The factories use the family that is selected at that moment (`setIcuVersion`), and the locale keeps it;
/// locales of both families work together. A factory that gets no memory returns null.
///
/// **Texts** that are returned as `char const *` are ASCII, zero-terminated, never null, and last as long as
/// the locale or one of its copies.
///
/// **Threads.** One object is used by one thread at a time, its copies by any; the named locales by all.
class VANSYS_API ICULocale
{
public:
    /// ICU's default locale, which follows the environment of the process until `setDefault` is called.
    static std::unique_ptr<ICULocale> createInstance();

    /// The locale with these parts, each of which may be null. `keywords` are like "collation=phonebook;...".
    /// When the first three are null, ICU's default locale.
    static std::unique_ptr<ICULocale> createInstance(char const *language, char const *country = nullptr,
                                                     char const *variant = nullptr,
                                                     char const *keywords = nullptr);

    /// The locale with this name, such as "zh_Hant_TW@collation=stroke"; null is ICU's default locale.
    static std::unique_ptr<ICULocale> createFromName(char const *name);

    static std::unique_ptr<ICULocale> getDefault();

    /// The locale of no language, whose name is empty.
    static std::unique_ptr<ICULocale> getRoot();

    /// Makes a locale ICU's default for the whole process.
    static void setDefault(ICULocale const &locale, ICUErrorCode &status);

    /// All locales that ICU has data for, and in `count` their number. Throws `std::bad_alloc`.
    static std::vector<std::unique_ptr<ICULocale>> getAvailableLocales(int &count);

    // Well-known locales. Each exists once per family, is made at its first use, and is there until the
    // process ends. Any thread may ask for them. Throw `std::bad_alloc` when they cannot be made.

    static ICULocale const &getUS();
    static ICULocale const &getCanada();
    static ICULocale const &getCanadaFrench();
    static ICULocale const &getChina();
    static ICULocale const &getPRC();
    static ICULocale const &getJapan();
    static ICULocale const &getKorea();

    /// Share what the other wraps. Throw `std::bad_alloc`.
    ICULocale(ICULocale const &other);
    ICULocale &operator=(ICULocale const &other);

    virtual ~ICULocale();

    /// Whether this stands for no locale, because the parts or the name made no sense.
    virtual bool isBogus() const;

    /// The whole name, such as "de_AT@collation=phonebook".
    virtual char const *getName() const;

    /// The name without keywords.
    virtual char const *getBaseName() const;

    /// The language code, two or three letters; empty when there is none.
    virtual char const *getLanguage() const;

    /// The script code, four letters; empty when there is none.
    virtual char const *getScript() const;

    /// The country or region code, two letters or three digits; empty when there is none.
    virtual char const *getCountry() const;

    virtual char const *getVariant() const;

    /// The ISO 639-2 code of the language, three letters; empty when it has none.
    virtual char const *getISO3Language() const;

    /// The ISO 3166 code of the country, three letters; empty when it has none.
    virtual char const *getISO3Country() const;

    /// The Windows identifier (LCID); 0 when there is none.
    virtual unsigned int getLCID() const;

    // What the locale, its language and its country are called in ICU's default locale or in a given one.
    // Throw `TStringCore::Exception`.

    virtual TStringCore getDisplayName() const;
    virtual TStringCore getDisplayName(ICULocale const &inLocale) const;
    virtual TStringCore getDisplayLanguage() const;
    virtual TStringCore getDisplayLanguage(ICULocale const &inLocale) const;
    virtual TStringCore getDisplayCountry() const;
    virtual TStringCore getDisplayCountry(ICULocale const &inLocale) const;

    /// Whether the names are the same, keywords included. The family does not matter.
    virtual bool equals(ICULocale const &other) const;

    friend bool operator==(ICULocale const &left, ICULocale const &right) { return left.equals(right); }
    friend bool operator!=(ICULocale const &left, ICULocale const &right) { return !left.equals(right); }

private:
    friend class vansys::detail::LocaleAccess;

    explicit ICULocale(std::any impl) noexcept;

    // A std::shared_ptr to the implementation of one family or the other.
    std::any m_impl;
};

} // namespace VanICU
