#include "vansys/TStackWalker.h"

#include "diagnostics/WalkedThread.h"

#include "vansys/TEvent.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace walked
{

int g_line = 0;

using Walk = bool (*)(RecordingWalker &walker, unsigned ownThread);

[[gnu::noinline]] bool Inner(Walk walk, RecordingWalker &walker, unsigned ownThread)
{
    bool const result = (g_line = __LINE__, walk(walker, ownThread));
    KeepFrame();
    return result;
}

[[gnu::noinline]] bool Outer(Walk walk, RecordingWalker &walker, unsigned ownThread)
{
    bool const result = Inner(walk, walker, ownThread);
    KeepFrame();
    return result;
}

bool Recurse(int depth, TStackWalker &walker);

// By a pointer that anybody could change, so that the compiler makes one call of it.
bool (*volatile g_recurse)(int, TStackWalker &) = Recurse;

[[gnu::noinline]] bool Recurse(int depth, TStackWalker &walker)
{
    bool const result = depth == 0 ? walker.GenerateCallstack() : g_recurse(depth - 1, walker);
    KeepFrame();
    return result;
}

[[gnu::noinline]] void Asleep(TEvent const &end)
{
    end.Wait();
    KeepFrame();
}

} // namespace walked

namespace
{

using Entry = TStackWalker::CallstackEntry;

TEST(TStackWalker, MakesLinesOfEntries)
{
    constexpr TStackWalker::CallstackEntryType First = TStackWalker::firstEntry;
    constexpr TStackWalker::CallstackEntryType Next = TStackWalker::nextEntry;
    constexpr TStackWalker::CallstackEntryType Last = TStackWalker::lastEntry;
    Entry nothing;
    nothing.programCounter = 0xABC;
    Entry unknown;
    unknown.programCounter = 0x5A2F10;
    unknown.name = "Parse";
    unknown.moduleName = "core";
    auto const in = [&unknown](char const *file)
    {
        Entry entry = unknown;
        entry.lineFileName = file;
        entry.lineNumber = 212;
        return entry;
    };
    Entry const known = in("src/parser.cpp");
    struct Case
    {
        unsigned number;
        TStackWalker::CallstackEntryType type;
        Entry entry;
        std::string_view flags; ///< those that are on: number, address, line, file
        std::string line;
    } const cases[] = {
        {0xF3C, Next, known, "nalf", "0x00000F3C src/parser.cpp(212): core!Parse"},
        {0xF3C, Next, unknown, "nalf", "0x00000F3C 0x5A2F10 core!Parse"},
        {0, First, nothing, "nalf", "0x00000000 0xABC (module name not available)!(symbol not available)"},
        {1, Next, known, "al", "(212): core!Parse"},
        {1, Next, known, "nf", "0x00000001 src/parser.cppcore!Parse"},
        {1, Next, unknown, "nlf", "0x00000001core!Parse"},
        {1, Next, unknown, "", "core!Parse"},
        {1, Last, known, "nalf", ""},
        {1, Next, Entry(), "nalf", ""},
        {1, Next, in("C:\\x\\STACKWALKER.cpp"), "nalf", ""},
        {1, Next, in("a/MemoryTrackingCommunication.cpp"), "nalf", ""},
        {1, Next, in("TMemory.CPP"), "", ""},
        {1, Next, in("a/tmemory.cpp/b"), "f", " a/tmemory.cpp/bcore!Parse"},
    };
    for (Case const &row : cases)
    {
        RecordingWalker walker;
        auto const has = [&row](char flag) { return row.flags.find(flag) != row.flags.npos; };
        walker.IncludeThreadInfo(has('n'));
        walker.IncludeSystemMemoryAddresses(has('a'));
        walker.IncludeFileLineNumber(has('l'));
        walker.IncludeFileName(has('f'));
        walker.OnCallstackEntry(row.number, row.type, row.entry);
        EXPECT_EQ(walker.Text(), row.line.empty() ? "" : row.line + '\n') << row.entry.lineFileName;
    }
}

TEST(TStackWalker, BeginsWithItsCaller)
{
    RecordingWalker walker;
    walker.GenerateCallstack();
    unsigned const id = walker.walkedThreadId;
    walked::Walk const walks[] = {
        [](RecordingWalker &own, unsigned) { return own.GenerateCallstack(); },
        [](RecordingWalker &own, unsigned thread) { return own.GenerateCallstack(thread); },
        [](RecordingWalker &own, unsigned) { return own.CallStackWalk(false); },
        [](RecordingWalker &own, unsigned) { return own.GenerateCallstacksForAllThreads(), true; },
        [](RecordingWalker &own, unsigned) { return own.CallStackWalk(true), true; },
    };
    for (walked::Walk const walk : walks)
    {
        walker.Reset();
        ASSERT_TRUE(walked::Outer(walk, walker, id));
        std::vector<std::string> const lines(walker.GetCallstack().begin(), walker.GetCallstack().end());
        std::string const place = "TStackWalkerTest.cpp(" + std::to_string(walked::g_line) + "): ";
        ASSERT_GT(lines.size(), 4u);
        EXPECT_EQ(lines[0].substr(0, 11), "0x00000000 ");
        std::size_t const inner = lines[0].ends_with("!walked::Inner") ? 0 : 1; // unless that has jumped
        EXPECT_TRUE(lines[inner].ends_with("!walked::Inner")) << walker.Text();
        EXPECT_NE(lines[inner].find(place), std::string::npos) << walker.Text();
        EXPECT_TRUE(lines[inner + 1].ends_with("!walked::Outer")) << walker.Text();
        EXPECT_EQ(walker.Count("TStackWalker::"), 0) << walker.Text();
    }
}

TEST(TStackWalker, EndsRecursionsAtTheLimit)
{
    char const text[] = "Recursive function passed the set recursion depth.";
    for (auto const &[limit, lines] : {std::pair(1000, 1002), std::pair(10, 12), std::pair(0, 1201)})
    {
        RecordingWalker walker;
        EXPECT_EQ(walker.GetMaxRecursionDepth(), 1000);
        walker.SetMaxRecursionDepth(limit);
        ASSERT_TRUE(walked::g_recurse(1200, walker));
        EXPECT_EQ(walker.Count("!walked::Recurse") + walker.Count(text), lines);
        EXPECT_EQ(walker.GetCallstack().back() == text, limit > 0);
    }
}

TEST(TStackWalker, WalksOtherThreads)
{
    TEvent const end;
    WalkedThread const thread([&end] { walked::Asleep(end); }, [&end] { end.Signal(); });
    RecordingWalker walker;
    do
    {
        walker.Reset();
        ASSERT_TRUE(walker.GenerateCallstack(thread.Id()));
    } while (walker.Count("!walked::Asleep") == 0);
    EXPECT_EQ(walker.walkedThreadId, thread.Id());
    EXPECT_EQ(walker.GetCallstack().front().substr(0, 11), "0x00000000 ");

    RecordingWalker all;
    all.GenerateCallstacksForAllThreads();
    EXPECT_EQ(all.Count("!walked::Asleep"), 1) << all.Text();
    // A thread that has only just begun may have no line.
    EXPECT_GE(all.firstEntries, all.Count("0x00000000 "));
    EXPECT_GE(all.Count("0x00000000 "), 2);
}

TEST(TStackWalker, RefusesWhatIsNoThreadOfTheProcess)
{
    RecordingWalker walker;
    EXPECT_FALSE(walker.GenerateCallstack(0xFFFFFFF0));
    EXPECT_TRUE(walker.GetCallstack().empty());

    struct Foreign : TStackWalker
    {
        Foreign() : TStackWalker(nullptr, 1) {}
        void OnOutput(char const *) override { ADD_FAILURE(); }
    } foreign;
    EXPECT_FALSE(foreign.GenerateCallstack());
    EXPECT_FALSE(foreign.GenerateCallstack(1));
    EXPECT_FALSE(foreign.GenerateCallstacksForAllThreads());
}

} // namespace
