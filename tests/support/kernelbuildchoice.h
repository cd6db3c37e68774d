// Lets a test choose the build of the kernels. The library chooses by the processor.
#ifndef ITOF_TESTS_SUPPORT_KERNELBUILDCHOICE_H_
#define ITOF_TESTS_SUPPORT_KERNELBUILDCHOICE_H_

#include <vector>

#include "alignment/kernelbuild.h"

/// The build that the library's steps use.
extern itof::KernelBuild g_kernelBuild;

/// The builds that this processor can run.
std::vector<itof::KernelBuild> KernelBuilds();

#endif  // ITOF_TESTS_SUPPORT_KERNELBUILDCHOICE_H_
