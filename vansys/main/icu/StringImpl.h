/// @file
/// The implementation of ICUString.
#pragma once

#include "vansys/ICUString.h"

#include "main/icu/LocaleImpl.h"
#include "main/icu/Wrapper.h"

#include <unicode/unistr.h>

#include <limits>
#include <stdexcept>
#include <string>

namespace vansys::detail
{

template <class Family>
class StringImpl final : public Wrapper<VanICU::ICUString, icu::UnicodeString>
{
    using ICULocale = VanICU::ICULocale;

public:
    using Wrapper::Wrapper;

    int length() const override { return Object().length(); }
    bool isEmpty() const override { return Object().isEmpty(); }
    bool isBogus() const override { return Object().isBogus(); }
    TCodeUnit charAt(int index) const override { return As<TCodeUnit>(Object().charAt(index)); }
    int char32At(int index) const override { return Object().char32At(index); }
    int countChar32() const override { return Object().countChar32(); }
    int countChar32(int start, int count) const override { return Object().countChar32(start, count); }
    TCodeUnit const *getBuffer() const override { return As<TCodeUnit const *>(Object().getBuffer()); }

    TCodeUnit const *getTerminatedBuffer() override
    {
        return As<TCodeUnit const *>(Object().getTerminatedBuffer());
    }

    Interface &append(TCodeUnit const *text, int count) override
    {
        return Changed(Object().append(As<UChar const *>(text), count));
    }

    Interface &toLower() override { return Changed(Object().toLower()); }
    Interface &toLower(ICULocale const &locale) override { return Changed(Object().toLower(Unwrap(locale))); }
    Interface &toUpper() override { return Changed(Object().toUpper()); }
    Interface &toUpper(ICULocale const &locale) override { return Changed(Object().toUpper(Unwrap(locale))); }
    Interface &trim() override { return Changed(Object().trim()); }

    int compare(Interface const &other) const override
    {
        return Object().compare(As<UChar const *>(other.getBuffer()), other.length());
    }

    std::string &toUTF8(std::string &result) const override
    {
        // Straight into the result: ICU's own way writes nothing, and says nothing, when it gets no memory.
        std::size_t const before = result.size();
        std::size_t const room = static_cast<std::size_t>(length()) * 3;
        if (room > static_cast<std::size_t>(std::numeric_limits<int>::max()))
            throw std::length_error("ICUString::toUTF8");
        result.resize(before + room);
        int written = 0;
        UErrorCode status = U_ZERO_ERROR;
        Family::Functions.u_strToUTF8WithSub(result.data() + before, static_cast<int>(room), &written,
                                             Object().getBuffer(), length(), 0xFFFD, nullptr, &status);
        result.resize(before + static_cast<std::size_t>(written));
        return result;
    }

private:
    /// What an operation returns that has changed the text: ICU's returns the text.
    Interface &Changed(icu::UnicodeString const &) noexcept { return *this; }
};

} // namespace vansys::detail

VANSYS_NAME_IMPLEMENTATIONS(String)
