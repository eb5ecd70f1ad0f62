#include "vansys/ICUString.h"

#include "main/icu/Call.h"
#include "main/icu/LocaleImpl.h"
#include "main/icu/StringImpl.h"

#include <limits>
#include <new>
#include <stdexcept>

using vansys::detail::As;
using vansys::detail::StringImpl;
using vansys::detail::WithSelectedFamily;

namespace vansys::detail
{

template <class Family>
int StringImpl<Family>::length() const
{
    return m_text->length();
}

template <class Family>
bool StringImpl<Family>::isEmpty() const
{
    return m_text->isEmpty();
}

template <class Family>
bool StringImpl<Family>::isBogus() const
{
    return m_text->isBogus();
}

template <class Family>
TCodeUnit StringImpl<Family>::charAt(int index) const
{
    return As<TCodeUnit>(m_text->charAt(index));
}

template <class Family>
int StringImpl<Family>::char32At(int index) const
{
    return m_text->char32At(index);
}

template <class Family>
int StringImpl<Family>::countChar32() const
{
    return m_text->countChar32();
}

template <class Family>
int StringImpl<Family>::countChar32(int start, int count) const
{
    return m_text->countChar32(start, count);
}

template <class Family>
TCodeUnit const *StringImpl<Family>::getBuffer() const
{
    return As<TCodeUnit const *>(m_text->getBuffer());
}

template <class Family>
TCodeUnit const *StringImpl<Family>::getTerminatedBuffer()
{
    return As<TCodeUnit const *>(m_text->getTerminatedBuffer());
}

template <class Family>
VanICU::ICUString &StringImpl<Family>::append(TCodeUnit const *text, int count)
{
    m_text->append(As<UChar const *>(text), count);
    return *this;
}

template <class Family>
VanICU::ICUString &StringImpl<Family>::toLower()
{
    m_text->toLower();
    return *this;
}

template <class Family>
VanICU::ICUString &StringImpl<Family>::toLower(VanICU::ICULocale const &locale)
{
    m_text->toLower(LocaleAccess::Unwrap(locale));
    return *this;
}

template <class Family>
VanICU::ICUString &StringImpl<Family>::toUpper()
{
    m_text->toUpper();
    return *this;
}

template <class Family>
VanICU::ICUString &StringImpl<Family>::toUpper(VanICU::ICULocale const &locale)
{
    m_text->toUpper(LocaleAccess::Unwrap(locale));
    return *this;
}

template <class Family>
VanICU::ICUString &StringImpl<Family>::trim()
{
    m_text->trim();
    return *this;
}

template <class Family>
int StringImpl<Family>::compare(ICUString const &other) const
{
    return m_text->compare(As<UChar const *>(other.getBuffer()), other.length());
}

template <class Family>
std::string &StringImpl<Family>::toUTF8(std::string &result) const
{
    // Straight into the result: ICU's own way writes nothing, and says nothing, when it gets no memory.
    std::size_t const before = result.size();
    std::size_t const room = static_cast<std::size_t>(m_text->length()) * 3;
    if (room > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::length_error("ICUString::toUTF8");
    result.resize(before + room);
    int written = 0;
    UErrorCode status = U_ZERO_ERROR;
    Family::Functions.u_strToUTF8WithSub(result.data() + before, static_cast<int>(room), &written,
                                         m_text->getBuffer(), m_text->length(), 0xFFFD, nullptr, &status);
    result.resize(before + static_cast<std::size_t>(written));
    return result;
}

} // namespace vansys::detail

namespace
{

/// Wraps the new text that `make` gives. When there is no memory, ICU's own new gives null, and its texts are
/// bogus from the start; the result is null then.
template <class Make>
std::unique_ptr<VanICU::ICUString> wrap(Make const &make)
{
    std::unique_ptr<icu::UnicodeString> text(make());
    if (!text || text->isBogus())
        return nullptr;
    return WithSelectedFamily(
        [&](auto family)
        {
            return std::unique_ptr<VanICU::ICUString>(new (std::nothrow)
                                                          StringImpl<decltype(family)>(std::move(text)));
        });
}

} // namespace

namespace VanICU
{

ICUString::~ICUString() = default;

std::unique_ptr<ICUString> ICUString::createInstance()
{
    return wrap([] { return new icu::UnicodeString(); });
}

std::unique_ptr<ICUString> ICUString::createInstance(char const *utf8)
{
    return wrap([utf8] { return new icu::UnicodeString(icu::UnicodeString::fromUTF8(utf8)); });
}

std::unique_ptr<ICUString> ICUString::createInstance(TCodeUnit const *text, int count)
{
    return wrap([=] { return new icu::UnicodeString(As<UChar const *>(text), count); });
}

} // namespace VanICU
