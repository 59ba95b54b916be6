#include "Program.h"

#include <gtest/gtest.h>

namespace
{

using namespace testsupport;

TEST(RStateGroup, ListsItsFunctionAndTheTypes)
{
    expectGolden(tool("rstate"), {{{},
                                   {"rstate increment            Increment R-state.\n",
                                    "Usage: rstate <function> [arguments]\n", 1}},
                                  {{"increment"},
                                   refusal("Error: valid arguments are <R-state> <increment type>\n"
                                           "Available increment types are:\n"
                                           "Auto\n"
                                           "Revision\n"
                                           "Minor\n"
                                           "Major\n"
                                           "EndOfList\n")}});
}

TEST(RStateGroup, PrintsTheNextRState)
{
    expectGolden(tool("rstate"), {
                                     {{"increment", "R1A01"}, answer("R1A02\n")},
                                     {{"increment", "R1A"}, answer("R1B\n")},
                                     {{"increment", "R1Z"}, answer("R1AB\n")},
                                     {{"increment", "R1A999"}, answer("R1B01\n")},
                                     {{"increment", "R1ZZZZ"}, answer("R2A\n")},
                                     {{"increment", "R1A01", "Auto"}, answer("R1A02\n")},
                                     {{"increment", "R1A05", "Revision"}, answer("R1A06\n")},
                                     {{"increment", "R1A", "Revision"}, answer("R1A\n")},
                                     {{"increment", "R1ZZZZ05", "Minor"}, answer("R2A01\n")},
                                     {{"increment", "R2B07", "Major"}, answer("R3A01\n")},
                                     {{"increment", "R1I", "Revision"}, answer("R1J\n")},
                                     // Further arguments are ignored.
                                     {{"increment", "R1A", "Major", "Minor"}, answer("R2A\n")},
                                 });
}

TEST(RStateGroup, PrintsTheTextAsGivenForAnUnknownType)
{
    for (const std::string type : {"revision", "EndOfList", "", "Autos", "Aut", "1"}) {
        for (const std::string text : {"R1A01", "R1I", "R1A00", "nonsense"}) {
            expectGolden(tool("rstate"), {{{"increment", text, type}, answer(text + '\n')}});
        }
    }
}

TEST(RStateGroup, StepsWhatCanBeReadOfAnyText)
{
    expectGolden(tool("rstate"),
                 {
                     {{"increment", "foo"}, answer("R0B\n")},
                     {{"increment", ""}, answer("R0B\n")},
                     {{"increment", "R"}, answer("R0B\n")},
                     {{"increment", "\xC4"}, answer("R0B\n")},
                     {{"increment", "R1\xC4"}, answer("R1B\n")},
                     {{"increment", "R5", "Major"}, answer("R6A\n")},
                     {{"increment", "R1A1000"}, answer("R1B01\n")},
                     {{"increment", "R1ABCDE01"}, answer("R1ABCE\n")},
                     // Numbers are read as the target does.
                     {{"increment", "R4294967297A"}, answer("R2147483647B\n")},
                     {{"increment", "R99999999999A"}, answer("R2147483647B\n")},
                     {{"increment", "R2147483647A", "Major"}, answer("R-2147483648A\n")},
                     {{"increment", "R1A4294967296", "Minor"}, answer("R1B01\n")},
                     {{"increment", "R1A4294967296", "Auto"}, answer("R1A\n")},
                 });
}

} // namespace
