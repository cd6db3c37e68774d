// Keeps the host's floating-point environment away from the library's arithmetic.
#ifndef ITOF_FLOATENVIRONMENT_H_
#define ITOF_FLOATENVIRONMENT_H_

#include <cfenv>

namespace itof {

/// While it exists, this thread computes in the default floating-point environment: rounds to nearest, traps nothing,
/// keeps denormal numbers. The destructor restores the host's environment,
/// including its exception flags, even after an exception.
///
/// Compilers may move arithmetic across its beginning and end. A function that creates one must therefore compute
/// nothing itself, and must call a function that cannot be inlined for everything else.
class DefaultFloatEnvironment {
 public:
  DefaultFloatEnvironment() {
    std::fegetenv(&hosts_);
    std::fesetenv(FE_DFL_ENV);
  }
  ~DefaultFloatEnvironment() { std::fesetenv(&hosts_); }
  DefaultFloatEnvironment(const DefaultFloatEnvironment&) = delete;
  DefaultFloatEnvironment& operator=(const DefaultFloatEnvironment&) = delete;

 private:
  std::fenv_t hosts_;
};

}  // namespace itof

#endif  // ITOF_FLOATENVIRONMENT_H_
