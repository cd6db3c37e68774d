// The device's liblog as the linker sees it. The NDK has a stub of its own, which this one equals in what is used.
#include <android/log.h>

extern "C" int __android_log_print(int, const char*, const char*, ...) { return 0; }
