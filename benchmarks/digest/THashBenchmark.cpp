#include "vansys/THash.h"

#include "Rows.h"

#include <functional>
#include <string>
#include <string_view>

#if defined(VANSYS_BENCH_QT)
#    include <QHashFunctions>
#endif

namespace bench
{

namespace
{

constexpr unsigned int DataSize = 1024;

template <class Hash>
auto HashBody(Hash hash)
{
    return [hash](benchmark::State &state)
    {
        std::string data(DataSize, 'x');
        for (auto _ : state)
        {
            benchmark::DoNotOptimize(data.data());
            benchmark::DoNotOptimize(hash(data.data()));
        }
    };
}

} // namespace

void AddHashRows(Rows &rows)
{
    rows.push_back({"table hash", "THash64 of 1 KiB", {}});
    AddCase(rows.back(), OwnName, HashBody([](char const *data) { return THash64(data, DataSize, 1); }));
    AddCase(rows.back(), "std::hash",
            HashBody([](char const *data)
                     { return std::hash<std::string_view>()(std::string_view(data, DataSize)); }));
#if defined(VANSYS_BENCH_QT)
    AddCase(rows.back(), "qHashBits",
            HashBody([](char const *data) { return qHashBits(data, DataSize, 1); }));
#endif
}

} // namespace bench
