#include "StandardStreams.h"
#include "commands/CommandLine.h"

int main(int argc, char* argv[])
{
    tools::openMissingStandardStreams();
    return runCommandLine(argc, argv);
}
