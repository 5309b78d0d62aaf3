// The benchmarks of the library by itself.
#ifndef BENCH_BENCHMARKS_H
#define BENCH_BENCHMARKS_H

namespace bench
{

// Every message class in every form and direction.
void registerCodecs();
// Messages of growing size.
void registerGrowth();

} // namespace bench

#endif
