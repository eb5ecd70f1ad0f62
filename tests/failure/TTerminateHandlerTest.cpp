#include "vansys/TTerminateHandler.h"

#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

std::string OutputOf(std::string const &way)
{
    ChildProcess child(VANSYS_HELPER_TERMINATING_PROGRAM, {way});
    EXPECT_TRUE(child.Wait().Exited(9)) << way << ": " << child.Output();
    std::string output;
    for (char const c : child.Output())
        if (c != '\r') // before line feeds on Windows
            output += c;
    return output;
}

} // namespace

TEST(TTerminateHandler, TellsWhatEndsTheProcess)
{
    struct Row
    {
        char const *way;
        std::vector<std::string> has; ///< in this order
        std::vector<std::string> hasNot;
    };
    std::vector<std::string> const standard{
        "Ended by std::out_of_range\nMessages:\nthe standard one\nCall stack:\n0x"};
    Row const rows[] = {
        {"both",
         {"Ended by VantrelException\nMessages:\ncannot open secret\nplain\nRedacted messages:\ncannot open %1\nCall "
          "stack:\n0x00000000 ",
          "ThrowMessages", "the handler before\n"},
         {"OnTerminate"}},
        {"captured", {"plain\n", "Call stack:\n0x00000000 ", "ThrowMessages\n0x00000001 "}, {"OnTerminate"}},
        {"redacted",
         {"Ended by VantrelException\nRedacted messages:\ncannot open %1\nthe handler before\n"},
         {"secret", "plain", "0x0"}},
        {"output", {"<Ended by "}, {"0x0"}},
        {"standard", standard, {}},
        {"unknown", {"Ended by int\nCall stack:\n0x"}, {"Messages"}},
        {"none", {"Ended without an exception\nCall stack:\n0x"}, {"Messages"}},
        {"memory", {"Ended by VantrelOutOfMemoryException\nMessages:\nOut of memory\n"}, {"Redacted"}},
        {"removed", {"the handler before\n"}, {"Ended"}},
        {"threads", {"Ended by VantrelException\n", "ThrowMessages", "the handler before\n"}, {}},
    };
    for (Row const &row : rows)
    {
        std::string const output = OutputOf(row.way);
        std::size_t position = 0;
        for (std::string const &part : row.has)
        {
            position = output.find(part, position);
            ASSERT_NE(position, std::string::npos) << row.way << " lacks " << part << " in " << output;
            position += part.size();
        }
        for (std::string const &part : row.hasNot)
            EXPECT_EQ(output.find(part), std::string::npos) << row.way << " has " << part << " in " << output;
    }
}
