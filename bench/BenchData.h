#pragma once
// The benchmark inputs (real photographs) made by ../shared/bench/make-data.sh into $BENCH_DATA.

#include <string>

namespace OrvantaBench {

// The folder of the benchmark photographs, made on first use when missing; empty if it cannot be made.
std::string benchDataDir();

}  // namespace OrvantaBench
