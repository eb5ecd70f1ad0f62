#include "diagnostics/MinidumpReader.h"
#include "support/TemporaryFolder.h"

#include <vansys/TStackWalker.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#if defined(_WIN32)
#    include <process.h>
#    include <windows.h>
#else
#    include <unistd.h>
#endif

namespace
{

constexpr CrashDumpType Types[] = {CrashDumpType::Stacks, CrashDumpType::StacksAndReferencedMemory};

unsigned OwnId()
{
    return static_cast<unsigned>(getpid());
}

int DumpItself(std::filesystem::path const &file, CrashDumpType type)
{
    // Wine's writer damages the heap where it has to start the symbol handler by itself.
    static bool const isLoaded = TStackWalker(TProcessHandle(-1), OwnId()).LoadModules();
    EXPECT_TRUE(isLoaded);
    return TStackWalker::WriteCrashDump(TProcessHandle(-1), OwnId(), file.u16string().c_str(), type);
}

TEST(CrashDumpTest, HasWhatThereIsInTheProcess)
{
    TemporaryFolder const folder;
    std::filesystem::path const file = folder.Path() / "dump";
    for (CrashDumpType const type : Types)
    {
        ASSERT_NE(DumpItself(file, type), 0);
        MinidumpReport const report = ReadMinidump(folder.Contents(file));
        EXPECT_EQ(report.fault, "");
        EXPECT_EQ(report.processId, OwnId());
        ASSERT_FALSE(report.modules.empty());
        EXPECT_NE(report.modules[0].find("crash_dump_test"), std::string::npos) << report.modules[0];
    }
    EXPECT_EQ(folder.Count(), 1);
}

TEST(CrashDumpTest, IsZeroWhereThereIsNoFile)
{
#if defined(_WIN32)
    if (GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version"))
        GTEST_SKIP() << "Wine's writer does not notice";
#endif
    TemporaryFolder const folder;
    for (std::filesystem::path const &file :
         {folder.Path() / "missing" / "dump", folder.Path(), std::filesystem::path()})
        EXPECT_EQ(DumpItself(file, CrashDumpType::Stacks), 0) << file;
    TCodeUnit const *const none = nullptr;
    EXPECT_EQ(TStackWalker::WriteCrashDump(TProcessHandle(-1), OwnId(), none, CrashDumpType::Stacks), 0);
    EXPECT_EQ(folder.Count(), 0);
}

TEST(CrashDumpTest, SurvivesThreadsThatComeAndGoAndOtherDumps)
{
    TemporaryFolder const folder;
    std::atomic<bool> isEnding{false};
    std::thread churn(
        [&]
        {
            while (!isEnding)
                std::thread([] {}).join();
        });
    auto const dump = [&](char const *name)
    {
        for (int i = 0; i < 10; ++i)
        {
            EXPECT_NE(DumpItself(folder.Path() / name, CrashDumpType::StacksAndReferencedMemory), 0);
            EXPECT_EQ(ReadMinidump(folder.Contents(folder.Path() / name)).fault, "");
        }
    };
    std::thread other([&] { dump("other"); });
    dump("dump");
    other.join();
    isEnding = true;
    churn.join();
    EXPECT_EQ(folder.Count(), 2);
}

} // namespace
