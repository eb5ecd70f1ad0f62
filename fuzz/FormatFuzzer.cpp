// A format string is either refused with one of the known messages, or formats as a plain reading of it says.

#include "FuzzInput.h"

#include <vansys/TFormatStringCore.h>

#include <algorithm>
#include <vector>

using fuzz::FuzzInput;
using fuzz::Require;

namespace
{

bool isKnownRefusal(TStringCore const &message)
{
    static constexpr char16_t const *Messages[] = {
        u"Leading zero in marker number in format string.",
        u"Invalid numberless marker in format string.",
        u"Invalid marker number > 99 in format string.",
        u"Invalid marker number <= 0 in format string.",
        u"Format string ends with an incomplete marker.",
        u"Format string ends with an invalid marker number <= 0.",
    };
    return std::any_of(std::begin(Messages), std::end(Messages),
                       [&](char16_t const *known)
                       { return message == TStringCore(std::u16string_view(known)); });
}

bool isAsciiDigit(char16_t unit)
{
    return unit >= u'0' && unit <= u'9';
}

/// The result by a reading that knows ASCII digits only. Sets `highest` to the highest marker number, or to
/// -1 when the format string is not valid.
std::u16string formatPlainly(std::u16string const &format, std::vector<std::u16string> const &arguments,
                             int &highest)
{
    highest = 0;
    std::u16string result;
    for (std::size_t i = 0; i < format.size(); ++i)
    {
        if (format[i] != u'%')
        {
            result.push_back(format[i]);
            continue;
        }
        if (++i < format.size() && format[i] == u'%')
        {
            result.push_back(u'%');
            continue;
        }
        std::size_t end = i;
        while (end < format.size() && isAsciiDigit(format[end]))
            ++end;
        if (end == i || end - i > 2 || format[i] == u'0')
        {
            highest = -1;
            return {};
        }
        std::size_t number = 0;
        for (; i < end; ++i)
            number = number * 10 + (format[i] - u'0');
        --i;
        highest = std::max(highest, static_cast<int>(number));
        if (number <= arguments.size())
            result += arguments[number - 1];
    }
    return result;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    FuzzInput input(data, size);
    std::vector<std::u16string> arguments(static_cast<std::size_t>(input.TakeInt(0, 12)));
    for (std::u16string &argument : arguments)
        argument = input.TakeText(20);
    // Digits, percent signs and letters only: what else there is is the other tests' concern.
    std::u16string format;
    for (char const byte : input.TakeRest())
        format.push_back(static_cast<unsigned char>(byte) & 0x7F);

    int highest = 0;
    std::u16string const expected = formatPlainly(format, arguments, highest);
    try
    {
        TFormatStringCore formatter(fuzz::ToString(format));
        Require(highest >= 0);
        for (std::u16string const &argument : arguments)
            formatter.arg(fuzz::ToString(argument));
        Require(formatter.result() == fuzz::ToString(expected));
        Require(highest <= static_cast<int>(arguments.size()));
    }
    catch (TFormatStringCore::Exception const &refusal)
    {
        if (highest < 0)
            Require(isKnownRefusal(refusal.GetMessagesFront()));
        else
        {
            Require(highest > static_cast<int>(arguments.size()));
            Require(
                refusal.GetMessagesFront().startsWith(u"Insufficient parameters to format string (have "));
        }
    }
    return 0;
}
