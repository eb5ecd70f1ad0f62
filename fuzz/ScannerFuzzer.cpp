// Whatever is asked of a scanner, its cursor stays inside the text, moves only when the request succeeds, and
// then by what was read.

#include "FuzzInput.h"

#include <vansys/TScanStringCore.h>

using fuzz::FuzzInput;
using fuzz::Require;

namespace
{

/// Carries out the operation of that number. `read` receives what was read, `hasRead` whether anything was.
void operate(TScanStringCore &scanner, int operation, FuzzInput &input, TStringCore &read, bool &hasRead)
{
    TStringCore const set = fuzz::ToString(input.TakeText(4));
    bool boolean = false;
    double number = 0;
    hasRead = false;
    switch (operation)
    {
    case 0:
        scanner.skipAnyOf(set);
        break;
    case 1:
        scanner.skipAnyNotOf(set);
        break;
    case 2:
        scanner.skipWhitespace();
        break;
    case 3:
        scanner.skipNonWhitespace();
        break;
    case 4:
        scanner.skipString(input.TakeInt(-3, 20));
        break;
    case 5:
        scanner.skipLine();
        break;
    case 6:
        scanner.skipNewline();
        break;
    case 7:
        scanner.skipBool();
        break;
    case 8:
        scanner.skipInt(input.TakeInt(2, 36));
        break;
    case 9:
        scanner.skipFloat();
        break;
    case 10:
        scanner.readBool(boolean);
        break;
    case 11:
        scanner.readFloat(number);
        break;
    case 12:
        scanner.skip(set.constData());
        break;
    case 13:
        scanner.end();
        break;
    case 14:
        scanner.readAnyOf(read, set);
        hasRead = true;
        break;
    case 15:
        scanner.readAnyNotOf(read, set);
        hasRead = true;
        break;
    case 16:
        scanner.readNonWhitespace(read);
        hasRead = true;
        break;
    default:
        scanner.readString(read, input.TakeInt(-3, 20));
        hasRead = true;
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    FuzzInput input(data, size);
    TStringCore text = fuzz::ToString(input.TakeText(200));
    text.truncateAtFirstNull();
    TScanStringCore scanner(text);

    // Each request takes a byte at least, so this ends.
    while (!input.IsEmpty())
    {
        int const before = scanner.index();
        TStringCore read = u"untouched";
        bool hasRead = false;
        try
        {
            operate(scanner, input.TakeInt(0, 17), input, read, hasRead);
            Require(scanner.index() >= before && scanner.index() <= text.length());
            if (hasRead)
                Require(read == text.mid(before, scanner.index() - before));
        }
        catch (TScanStringCore::Exception const &failure)
        {
            Require(scanner.index() == before);
            Require(read == u"untouched");
            Require(failure.GetMessages().size() == 1 && !failure.GetMessagesFront().isEmpty());
        }
    }
    return 0;
}
