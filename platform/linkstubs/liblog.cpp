// Stands in for the device's liblog at link time. The NDK has its own stub with the same function.
#include <android/log.h>

extern "C" int __android_log_print(int, const char*, const char*, ...) { return 0; }
