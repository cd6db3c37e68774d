// Reports a failure from a fuzz target.
#ifndef ITOF_TESTS_FUZZ_REQUIRE_H_
#define ITOF_TESTS_FUZZ_REQUIRE_H_

#include <cstdio>
#include <cstdlib>

/// Aborts, which libFuzzer takes as a failure, unless `holds`.
inline void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "failed: %s\n", what);
  std::abort();
}

#endif  // ITOF_TESTS_FUZZ_REQUIRE_H_
