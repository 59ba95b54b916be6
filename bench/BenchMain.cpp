#include <benchmark/benchmark.h>

int main(int argc, char* argv[])
{
    benchmark::AddCustomContext("bsp", BSP_VERSION);
    benchmark::AddCustomContext("compiler", BSP_COMPILER);
    benchmark::AddCustomContext("build type", BSP_BUILD_TYPE);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
