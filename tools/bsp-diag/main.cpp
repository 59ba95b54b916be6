#include "StandardStreams.h"
#include "commands/CommandLine.h"

#include <algorithm>

int main(int argc, char* argv[])
{
    tools::openMissingStandardStreams();
    return runCommandLine({argv + std::min(argc, 1), argv + argc});
}
