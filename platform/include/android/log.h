// Declares the print function of the Android system log like the device's liblog: only what the library calls.
#ifndef ITOF_PLATFORM_ANDROID_LOG_H_
#define ITOF_PLATFORM_ANDROID_LOG_H_

#ifdef __cplusplus
extern "C" {
#endif

typedef enum android_LogPriority { ANDROID_LOG_ERROR = 6 } android_LogPriority;

/// Writes one formatted line with a priority and a tag to the system log. This project ignores the result.
int __android_log_print(int priority, const char* tag, const char* format, ...) __attribute__((format(printf, 3, 4)));

#ifdef __cplusplus
}
#endif

#endif  // ITOF_PLATFORM_ANDROID_LOG_H_
