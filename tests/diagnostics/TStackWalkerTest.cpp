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

[[gnu::noinline]] void Asleep(TEvent const &started, TEvent const &end)
{
    started.Signal();
    end.Wait();
    KeepFrame();
}

} // namespace walked

namespace
{

using Entry = TStackWalker::CallstackEntry;

TEST(TStackWalker, MakesLinesOfEntries)
{
    Entry nothing;
    nothing.programCounter = 0xABC;
    Entry unknown;
    unknown.programCounter = 0x5A2F10;
    unknown.name = "Parse";
    unknown.moduleName = "core";
    Entry known = unknown;
    known.lineFileName = "src/parser.cpp";
    known.lineNumber = 212;
    auto const in = [&known](char const *file)
    {
        Entry entry = known;
        entry.lineFileName = file;
        return entry;
    };
    struct Case
    {
        unsigned number;
        TStackWalker::CallstackEntryType type;
        Entry entry;
        char const *flags; ///< those that are on: number, address, line, file
        char const *line;
    } const cases[] = {
        {0xF3C, TStackWalker::nextEntry, known, "nalf", "0x00000F3C src/parser.cpp(212): core!Parse"},
        {0xF3C, TStackWalker::nextEntry, unknown, "nalf", "0x00000F3C 0x5A2F10 core!Parse"},
        {0, TStackWalker::firstEntry, nothing, "nalf",
         "0x00000000 0xABC (module name not available)!(symbol not available)"},
        {1, TStackWalker::nextEntry, known, "al", "(212): core!Parse"},
        {1, TStackWalker::nextEntry, known, "nf", "0x00000001 src/parser.cppcore!Parse"},
        {1, TStackWalker::nextEntry, unknown, "nlf", "0x00000001core!Parse"},
        {1, TStackWalker::nextEntry, unknown, "", "core!Parse"},
        {1, TStackWalker::lastEntry, known, "nalf", ""},
        {1, TStackWalker::nextEntry, Entry(), "nalf", ""},
        {1, TStackWalker::nextEntry, in("C:\\x\\STACKWALKER.cpp"), "nalf", ""},
        {1, TStackWalker::nextEntry, in("a/MemoryTrackingCommunication.cpp"), "nalf", ""},
        {1, TStackWalker::nextEntry, in("TMemory.CPP"), "", ""},
        {1, TStackWalker::nextEntry, in("a/tmemory.cpp/b"), "f", " a/tmemory.cpp/bcore!Parse"},
    };
    for (Case const &row : cases)
    {
        RecordingWalker walker;
        std::string_view const flags = row.flags;
        walker.IncludeThreadInfo(flags.find('n') != flags.npos);
        walker.IncludeSystemMemoryAddresses(flags.find('a') != flags.npos);
        walker.IncludeFileLineNumber(flags.find('l') != flags.npos);
        walker.IncludeFileName(flags.find('f') != flags.npos);
        walker.OnCallstackEntry(row.number, row.type, row.entry);
        std::string const expected = *row.line ? std::string(row.line) + '\n' : "";
        EXPECT_EQ(walker.Text(), expected) << row.entry.lineFileName << " " << row.flags;
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
    TEvent started;
    TEvent end;
    {
        WalkedThread const thread([&] { walked::Asleep(started, end); });
        started.Wait();
        RecordingWalker walker;
        EXPECT_TRUE(walker.GenerateCallstack(thread.Id()));
        EXPECT_EQ(walker.Count("!walked::Asleep"), 1) << walker.Text();
        EXPECT_EQ(walker.walkedThreadId, thread.Id());
        EXPECT_EQ(walker.GetCallstack().front().substr(0, 11), "0x00000000 ");

        RecordingWalker all;
        all.GenerateCallstacksForAllThreads();
        EXPECT_EQ(all.Count("!walked::Asleep"), 1) << all.Text();
        EXPECT_EQ(all.firstEntries, all.Count("0x00000000 "));
        EXPECT_GE(all.firstEntries, 2);
        end.Signal();
    }
}

TEST(TStackWalker, RefusesWhatIsNoThreadOfTheProcess)
{
    RecordingWalker walker;
    EXPECT_FALSE(walker.GenerateCallstack(0xFFFFFFF0));
    EXPECT_TRUE(walker.GetCallstack().empty());

    class Foreign : public TStackWalker
    {
    public:
        Foreign() : TStackWalker(nullptr, 1) {}
        void OnOutput(char const *) override { ADD_FAILURE(); }
    } foreign;
    EXPECT_FALSE(foreign.GenerateCallstack());
    EXPECT_FALSE(foreign.GenerateCallstack(1));
    EXPECT_FALSE(foreign.GenerateCallstacksForAllThreads());
}

TEST(TStackWalkerCollector, KeepsLinesUntilReset)
{
    TStackWalkerCollector walker;
    walker.OnOutput("a");
    TStackWalkerCollector const copy(walker);
    walker.OnOutput("b");
    EXPECT_EQ(copy.GetCallstack(), std::list<std::string>{"a"});
    EXPECT_EQ(walker.GetCallstack(), (std::list<std::string>{"a", "b"}));
    walker.Reset();
    EXPECT_TRUE(walker.GetCallstack().empty());
}

} // namespace
