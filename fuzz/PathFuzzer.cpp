// Every question about a path ends and has an answer, whatever the text. The answers do not contradict each
// other.

#include "FuzzInput.h"

#include "path/PathContradiction.h"
#include "vansys/TPathCore.h"

using fuzz::FuzzInput;
using fuzz::Require;
using fuzz::ToString;

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    FuzzInput input(data, size);
    TPathCore path = ToString(input.TakeText(250));
    TPathCore other = ToString(input.TakeText(40));
    do
    {
        Require(FindContradiction(path) == nullptr);
        switch (input.TakeInt(0, 7))
        {
        case 0:
            path.Append(other);
            break;
        case 1:
            path.Concat(other);
            break;
        case 2:
            path.RemoveFilename();
            break;
        case 3:
            path.RemoveExtension();
            break;
        case 4:
            path.ReplaceExtension(other.GenericString());
            break;
        case 5:
            path.Swap(other);
            break;
        case 6:
            path = TPathCore::fromVector(path.toVector());
            break;
        default:
            path =
                TPathCore(path.Stem()).Append(path.UNCShareName()) + path.Extension() + path.UNCObjectName();
            break;
        }
        Require((path == other) == (path.Compare(other) == 0));
        Require(path != other || std::hash<TPathCore>()(path) == std::hash<TPathCore>()(other));
    } while (!input.IsEmpty() && path.GenericString().length() < 4000);
    return 0;
}
