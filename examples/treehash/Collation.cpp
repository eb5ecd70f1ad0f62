#include "Collation.h"

#include <vansys/ICUFunctions.h>
#include <vansys/TFormatStringCore.h>
#include <vansys/TStringCore.h>
#include <vansys/VantrelException.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <tuple>
#include <utility>

namespace treehash
{

namespace
{

struct CloseCollator
{
    void operator()(VanICU::ICU_Collator *collator) const { VanICU::t_ucol_close(collator); }
};

using Collator = std::unique_ptr<VanICU::ICU_Collator, CloseCollator>;

Collator OpenCollator(std::string const &locale)
{
    VanICU::ICUErrorCode status{};
    Collator collator(VanICU::t_ucol_open(locale.empty() ? nullptr : locale.c_str(), &status));
    if (VanICU::ICU_FAILURE(status))
        throw VantrelException(TFormatStringCore("Cannot sort for locale '%1': %2")
                                   .arg(TStringCore::fromStdString(locale), VanICU::t_u_errorName(status)));
    return collator;
}

/// Bytes that compare as the collator compares names.
std::vector<unsigned char> SortKey(Collator const &collator, std::string const &name)
{
    TStringCore const text = TStringCore::fromStdString(name);
    auto const write = [&](std::vector<unsigned char> &key)
    {
        return VanICU::t_ucol_getSortKey(collator.get(), text.constData(), text.length(), key.data(),
                                         static_cast<int>(key.size()));
    };
    std::vector<unsigned char> key(64 + 4 * name.size()); // enough for nearly all
    auto const size = static_cast<std::size_t>(write(key));
    bool const isComplete = size <= key.size();
    key.resize(size);
    if (!isComplete)
        write(key);
    return key;
}

} // namespace

void SortByCollation(std::vector<FoundFile> &files, std::string const &locale)
{
    Collator const collator = OpenCollator(locale);
    using KeyedFile = std::pair<std::vector<unsigned char>, FoundFile>;
    std::vector<KeyedFile> keyed;
    keyed.reserve(files.size());
    for (FoundFile &file : files)
    {
        std::vector<unsigned char> key = SortKey(collator, file.name);
        keyed.emplace_back(std::move(key), std::move(file));
    }
    std::sort(keyed.begin(), keyed.end(),
              [](KeyedFile const &a, KeyedFile const &b)
              { return std::tie(a.first, a.second.name) < std::tie(b.first, b.second.name); });
    std::transform(keyed.begin(), keyed.end(), files.begin(),
                   [](KeyedFile &file) { return std::move(file.second); });
}

} // namespace treehash
