/// @file
/// ICUString: ICU's own string class, for what takes or returns one.
#pragma once

#include "vansys/Export.h"
#include "vansys/ICULocale.h"
#include "vansys/TStringCore.h"

#include <memory>
#include <string>

namespace VanICU
{

/// A text of UTF-16 in ICU's own string class. `TStringCore` is the string to work with; this one is for the
/// other classes of the layer, and for what only ICU does.
///
/// The factories use the family that is selected at that moment (`setIcuVersion`), and the text keeps it. A
/// factory that gets no memory returns null. A text that gets no memory later becomes bogus, and empty.
///
/// Positions and counts are `int` counts of code units; those outside the text are moved to its ends. One
/// object is used by one thread at a time.
class VANSYS_API ICUString
{
public:
    /// The empty text.
    static std::unique_ptr<ICUString> createInstance();

    /// Decodes UTF-8. U+FFFD stands for what is ill-formed; a null pointer is the empty text.
    static std::unique_ptr<ICUString> createInstance(char const *utf8);

    /// Copies units as they are. A negative count means up to the first zero; a null pointer is the empty
    /// text.
    static std::unique_ptr<ICUString> createInstance(TCodeUnit const *text, int count = -1);

    /// The same; here a failing conversion throws `TStringCore::Exception` "Out of memory".
    static std::unique_ptr<ICUString> createInstance(TWideTwin const *text, int count = -1)
    {
        TStringCore const converted(text, count);
        return createInstance(converted.constData(), converted.length());
    }

    virtual ~ICUString();

    virtual int length() const = 0;

    virtual bool isEmpty() const = 0;

    /// Whether the text could not be held.
    virtual bool isBogus() const = 0;

    /// The unit at `index`; 0xFFFF outside the text.
    virtual TCodeUnit charAt(int index) const = 0;

    /// The code point that the unit at `index` is part of; 0xFFFF outside the text.
    virtual int char32At(int index) const = 0;

    /// The number of code points.
    virtual int countChar32() const = 0;

    /// The number of code points in `count` units from `start` on.
    virtual int countChar32(int start, int count) const = 0;

    /// The units, not always zero-terminated, valid until the text is changed; null when it is bogus.
    virtual TCodeUnit const *getBuffer() const = 0;

    /// The units, zero-terminated, valid until the text is changed; null when it is bogus.
    virtual TCodeUnit const *getTerminatedBuffer() = 0;

    /// Appends units. A negative count means up to the first zero.
    virtual ICUString &append(TCodeUnit const *text, int count) = 0;

    // Case mapping by the rules of ICU's default locale or of a given one.

    virtual ICUString &toLower() = 0;
    virtual ICUString &toLower(ICULocale const &locale) = 0;
    virtual ICUString &toUpper() = 0;
    virtual ICUString &toUpper(ICULocale const &locale) = 0;

    /// Removes white space from both ends.
    virtual ICUString &trim() = 0;

    /// -1, 0 or 1 as this text comes before, equals or follows the other, by code unit.
    virtual int compare(ICUString const &other) const = 0;

    /// Appends the text as UTF-8 to `result`, U+FFFD for each lone surrogate, and returns `result`. A throw
    /// of `std::bad_alloc` or `std::length_error` leaves it as it was.
    virtual std::string &toUTF8(std::string &result) const = 0;

protected:
    // What is copied is the interface, never the text.
    ICUString() = default;
    ICUString(ICUString const &) = default;
    ICUString &operator=(ICUString const &) = default;
};

} // namespace VanICU
