#include "RowBuilders.h"

namespace interface
{

std::vector<FailureRow> rstateRows()
{
    const std::string refused = "bsp.rstate 1 updateVersion(): ";
    const std::string version = "bsp.rstate 4 RState(): R-state: ";
    const std::string invalid = "bsp.rstate 1 increment(17): Invalid parameter";
    return {
        onCase("RState of r1A", "r1A",
               {refused + "First letter not R", version + "r1A, version: 0.0.0", invalid}),
        onCase("RState of RA1", "RA1",
               {refused + "No digit after R", version + "RA1, version: 0.0.0", invalid}),
        onCase("RState of R0A", "R0A",
               {refused + "R-state number not larger than 0", version + "R0A, version: 0.0.0",
                invalid}),
        onCase("RState of R1 alone", "R1",
               {refused + "No R-state letter(s) after number", version + "R1, version: 1.0.0",
                invalid}),
        onCase("RState of R1A1000", "R1A1000",
               {refused + "Illegal verification state: 1000",
                version + "R1A1000, version: 1.0.1000", invalid}),
        onCase("RState::RState(int, int, int)", "R1ZZZZ999",
               {"bsp.rstate 3 RState(): R-state: R1ZZZZ999, version: 1.107859.999"}),
    };
}

} // namespace interface
