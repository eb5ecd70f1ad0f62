#include "vansys/ICUString.h"

#include "main/icu/StringImpl.h"

using vansys::detail::As;

namespace VanICU
{

namespace
{

/// Wraps a new text. When there is no memory, ICU's own new gives null, and its texts are bogus from the
/// start; the result is null then.
std::unique_ptr<ICUString> WrapText(icu::UnicodeString *made)
{
    std::unique_ptr<icu::UnicodeString> text(made);
    if (!text || text->isBogus())
        return nullptr;
    return vansys::detail::Wrap<vansys::detail::StringImpl>(std::move(text));
}

} // namespace

ICUString::~ICUString() = default;

std::unique_ptr<ICUString> ICUString::createInstance()
{
    return WrapText(new icu::UnicodeString());
}

std::unique_ptr<ICUString> ICUString::createInstance(char const *utf8)
{
    return WrapText(new icu::UnicodeString(icu::UnicodeString::fromUTF8(utf8)));
}

std::unique_ptr<ICUString> ICUString::createInstance(TCodeUnit const *text, int count)
{
    return WrapText(new icu::UnicodeString(As<UChar const *>(text), count));
}

} // namespace VanICU
