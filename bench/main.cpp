// Benchmarks are named <message>/<form>/<encode or decode>/<bci or peer>.

#include "benchmarks.h"
#include "peers.h"

int main(int argc, char** argv)
{
    bench::registerCodecs();
    bench::registerGrowth();
    bench::registerMemcpy();
    bench::registerOptimum();
    bench::registerCharconv();
    bench::registerFmt();
    bench::registerPugixml();
    bench::registerProtobuf();
    bench::registerBoost();
    bench::registerCereal();

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
    {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
