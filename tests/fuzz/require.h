// How a fuzz target says that something is wrong.
#ifndef ITOF_TESTS_FUZZ_REQUIRE_H_
#define ITOF_TESTS_FUZZ_REQUIRE_H_

#include <cstdio>
#include <cstdlib>

/// Ends the process, as the fuzzer wants it, unless `holds`.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "not so: %s\n", what);
  std::abort();
}

#endif  // ITOF_TESTS_FUZZ_REQUIRE_H_
