// Names that come from outside: bytes come back as they were, and what SafeJoin lets through lies below the
// base.

#include "FuzzInput.h"

#include <vansys/TPathCore.h>

#include <type_traits>

using fuzz::FuzzInput;
using fuzz::Require;

namespace
{

void checkBytes(std::string_view bytes)
{
    // Where the host's names are bytes.
    if (std::is_same_v<TCodeUnit, char16_t>)
        Require(TPathCore::fromNativeBytes(bytes).toNativeBytes() == bytes);
}

void checkRelations(TPathCore const &path, TPathCore const &base)
{
    TPathCore const normal = path.LexicallyNormal();
    Require(normal.LexicallyNormal().GenericString() == normal.GenericString());
    TPathCore const relative = path.RelativeTo(base);
    Require(!path.IsUnder(base) || (!relative.IsEmpty() && *relative.begin() != TStringCore(u"..")));
    Require(path.IsUnder(normal) && normal.IsUnder(path));
}

void checkJoin(TPathCore const &base, TStringCore const &untrusted)
{
    try
    {
        TPathCore const joined = TPathCore::SafeJoin(base, untrusted);
        Require(joined.IsUnder(base, TStringCore::CaseSensitive));
        Require(joined.RootName().GenericString() == base.RootName().GenericString());
    }
    catch (TPathCore::Exception const &)
    {
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size)
{
    FuzzInput input(data, size);
    TStringCore const first = fuzz::ToString(input.TakeText(40));
    TStringCore const second = fuzz::ToString(input.TakeText(40));
    checkRelations(first, second);
    checkJoin(first, second);
    checkBytes(input.TakeRest());
    return 0;
}
