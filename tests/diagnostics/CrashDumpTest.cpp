#include "diagnostics/MinidumpReader.h"
#include "support/TemporaryFolder.h"

#include <vansys/TStackWalker.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#if defined(_WIN32)
#    include <process.h>
#else
#    include <unistd.h>
#endif

namespace
{

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
    for (CrashDumpType const type : {CrashDumpType::Stacks, CrashDumpType::StacksAndReferencedMemory})
    {
        ASSERT_NE(DumpItself(file, type), 0);
        MinidumpReport const report = ReadMinidump(folder.Contents(file));
        EXPECT_EQ(report.fault, "");
        EXPECT_EQ(report.processId, OwnId());
        EXPECT_NE(report.modules.at(0).find("crash_dump_test"), std::string::npos) << report.modules[0];
    }
    EXPECT_EQ(folder.Count(), 1);
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
