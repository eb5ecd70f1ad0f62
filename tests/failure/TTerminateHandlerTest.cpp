#include "vansys/TTerminateHandler.h"

#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

TEST(TTerminateHandler, TellsWhatEndsTheProcess)
{
    struct Row
    {
        char const *way;
        std::vector<std::string> has; ///< in this order
        char const *hasNot;
    };
    Row const rows[] = {
        {"both",
         {"Ended by VantrelException\nMessages:\ncannot open secret\nplain\nRedacted messages:\ncannot open %1\n"
          "Call stack:\n0x00000000 ",
          "ThrowMessages", "the handler before\n"},
         "OnTerminate"},
        {"captured", {"Call stack:\n0x00000000 ", "ThrowMessages\n0x00000001 "}, "OnTerminate"},
        {"redacted",
         {"Ended by VantrelException\nRedacted messages:\ncannot open %1\nthe handler before\n"},
         "secret"},
        {"output", {"<Ended by "}, "0x0"},
        {"standard",
         {"Ended by std::out_of_range\nMessages:\nthe standard one\nCall stack:\n0x"},
         "Redacted"},
        {"unknown", {"Ended by int\nCall stack:\n0x"}, "Messages"},
        {"none", {"Ended without an exception\nCall stack:\n0x"}, "Messages"},
        {"memory", {"Ended by VantrelOutOfMemoryException\nMessages:\nOut of memory\n"}, "Redacted"},
        {"removed", {"the handler before\n"}, "Ended"},
        {"threads", {"Ended by VantrelException\n", "ThrowMessages", "the handler before\n"}, "OnTerminate"}};
    for (Row const &row : rows)
    {
        ChildProcess child(VANSYS_HELPER_TERMINATING_PROGRAM, {row.way});
        EXPECT_TRUE(child.Wait().Exited(9)) << row.way;
        std::string output = child.Output();
        std::erase(output, '\r'); // before line feeds on Windows
        std::size_t position = 0;
        for (std::string const &part : row.has)
        {
            position = output.find(part, position);
            ASSERT_NE(position, output.npos) << row.way << " lacks " << part << " in " << output;
        }
        EXPECT_EQ(output.find(row.hasNot), output.npos) << row.way << ": " << output;
    }
}
