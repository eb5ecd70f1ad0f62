/// @file
/// The implementation of ICUString.
#pragma once

#include "vansys/ICUString.h"

#include "main/icu/Family.h"

#include <unicode/unistr.h>

#include <memory>
#include <string>
#include <utility>

namespace vansys::detail
{

/// Owns a string of ICU's on behalf of a family.
template <class Family>
class StringImpl final : public VanICU::ICUString
{
public:
    explicit StringImpl(std::unique_ptr<icu::UnicodeString> text) noexcept : m_text(std::move(text)) {}

    StringImpl(StringImpl const &) = delete;
    StringImpl &operator=(StringImpl const &) = delete;

    int length() const override;
    bool isEmpty() const override;
    bool isBogus() const override;
    TCodeUnit charAt(int index) const override;
    int char32At(int index) const override;
    int countChar32() const override;
    int countChar32(int start, int count) const override;
    TCodeUnit const *getBuffer() const override;
    TCodeUnit const *getTerminatedBuffer() override;
    ICUString &append(TCodeUnit const *text, int count) override;
    ICUString &toLower() override;
    ICUString &toLower(VanICU::ICULocale const &locale) override;
    ICUString &toUpper() override;
    ICUString &toUpper(VanICU::ICULocale const &locale) override;
    ICUString &trim() override;
    int compare(ICUString const &other) const override;
    std::string &toUTF8(std::string &result) const override;

private:
    std::unique_ptr<icu::UnicodeString> m_text; // never null
};

} // namespace vansys::detail

namespace VanICU44
{
using ICUString44Impl = vansys::detail::StringImpl<Family>;
}

namespace VanICU55
{
using ICUString55Impl = vansys::detail::StringImpl<Family>;
}
