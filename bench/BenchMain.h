// The start of the benchmark programs: --version answered as every Tolvar program answers it,
// --help naming the program and what it measures before the benchmark library's own options.
#pragma once

namespace tolvar::bench {

// Answers --help or --version, or runs the registered benchmarks; returns the exit status.
int runBenchmarks(int argc, char** argv, const char* program, const char* about);

}  // namespace tolvar::bench
