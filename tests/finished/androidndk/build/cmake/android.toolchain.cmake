# Stands in for the Android NDK's file of this name on a machine without the NDK. It takes the same variables and uses the
# compiler, C++ library, flags and search rules of NDK r28, but Debian's C library for 64-bit Arm. The result shows that
# the preset works; it runs in an emulator, not on a device.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES ANDROID_ABI ANDROID_PLATFORM ANDROID_STL)
if(NOT "${ANDROID_ABI} ${ANDROID_PLATFORM} ${ANDROID_STL}" STREQUAL "arm64-v8a android-34 c++_static")
  message(FATAL_ERROR "${ANDROID_ABI} ${ANDROID_PLATFORM} ${ANDROID_STL}")
endif()
set(ANDROID TRUE)
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER clang-19)
set(CMAKE_CXX_COMPILER clang++-19)
set(CMAKE_STRIP /usr/bin/aarch64-linux-gnu-strip CACHE FILEPATH "")
set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)
set(flags "-g -DANDROID -fdata-sections -ffunction-sections -funwind-tables -fstack-protector-strong \
-D_FORTIFY_SOURCE=2 -Wformat -Werror=format-security")
set(CMAKE_C_FLAGS_INIT "${flags}")
set(sysroot ${CMAKE_CURRENT_LIST_DIR}/../../sysroot)
set(CMAKE_CXX_FLAGS_INIT "${flags} -nostdinc++ -isystem ${sysroot}/usr/lib/llvm-19/include/c++/v1")
# The C++ runtime becomes part of each file.
set(CMAKE_CXX_STANDARD_LIBRARIES "${sysroot}/usr/lib/llvm-19/lib/libc++.a ${sysroot}/usr/lib/llvm-19/lib/libc++abi.a")
set(linker "-fuse-ld=lld-19 -nostdlib++ -static-libgcc -Wl,--build-id=sha1 -Wl,--fatal-warnings")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${linker} -Wl,--no-undefined")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${linker} -Wl,--gc-sections")
# Packages of the host must not be found in their usual places.
set(CMAKE_FIND_ROOT_PATH ${sysroot})
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
