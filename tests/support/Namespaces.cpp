#include "Namespaces.h"

#include "Program.h"

namespace testsupport
{

bool haveNamespaces()
{
    Program probe{};
    probe.path = "bwrap";
    probe.arguments = {"--dev-bind", "/", "/", "--tmpfs", "/tmp", "true"};
    probe.foreign = true;
    return probe.run().status == 0;
}

} // namespace testsupport
