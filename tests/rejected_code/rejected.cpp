// What the compiler must reject: one thing for each value of REJECTED, and for 0 nothing.

#include "vansys/TCancelEvent.h"
#include "vansys/TFormatLiteral.h"
#include "vansys/TPathCore.h"
#include "vansys/TScanStringCore.h"

#include <string>

#if REJECTED == 0

// The same as below, as it is meant.
constexpr TFormatLiteral<1> Constant = "%1%%";
TStringCore const text = FormatText(u"%1 of %2", 1, Constant.text(u'x'));
TStringCore const last = TFormatLiteral("%9").arg(1, 2).arg(TStringCore(u"a"), u'x' - u'a');
TFormatStringCore const format = CheckedFormat(L"%1", text);
TScanStringCore const scan(text);
RefCntPtr<TCancelEvent, RefCntObject> const event(new TCancelEvent);
void change()
{
    event->Add(RefCntPtr<TCancelEvent, RefCntObject>(new TCancelEvent));
    event->Add(nullptr);
    event->Remove(nullptr);
}
TCodeUnit const *const pointer = text;
void const *const address = text;
std::basic_string<TCodeUnit> const units = std::basic_string<TCodeUnit>() = text;
bool const isEmpty = text == u"" || text.isEmpty();
TStringCore const &either = isEmpty ? last : text;
TPathCore const path = u"a/b";
PathElements const elements = path.Elements();

#elif REJECTED == 1
TStringCore const text = FormatText(u"%0", 1);
#elif REJECTED == 2
TStringCore const text = FormatText("%x", 1);
#elif REJECTED == 3
TFormatStringCore const format = CheckedFormat(L"%1 of %100", 1);
#elif REJECTED == 4
TStringCore const text = TFormatLiteral(u8"100 %").text();
#elif REJECTED == 5 || REJECTED == 6

// Digits of which one comes before "0".
struct OtherDigits : vansys::detail::FormatLiteralSink
{
    constexpr bool IsDigit(TCodeUnit unit) const noexcept { return unit >= u'/' && unit <= u'9'; }
};

constexpr int scan(char16_t const *begin, char16_t const *end)
{
    OtherDigits digits;
    return vansys::detail::ScanFormat(begin, end, digits);
}

constexpr char16_t Format[] = u"%/.";
constexpr int number = scan(Format, Format + (REJECTED == 5 ? 3 : 2));

#elif REJECTED == 7
TStringCore const text = FormatText(u"%1 of %2", 1);
#elif REJECTED == 8
constexpr TFormatLiteral<1> Constant = "%2";
#elif REJECTED == 9
TFormatStringCore const format = TFormatStringCore(u"%1").arg(TStringCore(u"a"), u'x');
#elif REJECTED == 10
TFormatStringCore const format = TFormatStringCore(u"%1").arg(5, 3, u'0');
#elif REJECTED == 11
TScanStringCore const scan(TStringCore(u"a"));
#elif REJECTED == 12
TWideTwin const twin[] = {0};
TScanStringCore const scan(twin);
#elif REJECTED == 13
void add(TCancelEvent const &parent, TCancelEvent &local)
{
    parent.Add(&local);
}
#elif REJECTED == 14
void remove(TCancelEvent const &parent, TCancelEvent *child)
{
    parent.Remove(child);
}
#elif REJECTED == 23
PathElements const elements = TPathCore(u"a/b").Elements();
#elif REJECTED >= 15
TStringCore text, other;
#    if REJECTED == 15
auto const condition = text ? 1 : 0;
#    elif REJECTED == 16
bool const condition = text;
#    elif REJECTED == 17
auto const sum = text + u'x';
#    elif REJECTED == 18
auto const sum = 1 + text;
#    elif REJECTED == 19
auto const sum = text + other;
#    elif REJECTED == 20
auto const difference = text - other;
#    elif REJECTED == 21
auto const difference = text - u"x";
#    elif REJECTED == 22
TStringCore const adopted{vansys::detail::StringStorage()};
#    endif
#endif
