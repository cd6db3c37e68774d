// The Android system log's print function, as the device's liblog has it. Only what the library calls is declared.
#ifndef ITOF_PLATFORM_ANDROID_LOG_H_
#define ITOF_PLATFORM_ANDROID_LOG_H_

#ifdef __cplusplus
extern "C" {
#endif

typedef enum android_LogPriority { ANDROID_LOG_ERROR = 6 } android_LogPriority;

/// Writes one formatted line with a priority and a tag to the system log. The result is not used by this project.
int __android_log_print(int priority, const char* tag, const char* format, ...) __attribute__((format(printf, 3, 4)));

#ifdef __cplusplus
}
#endif

#endif  // ITOF_PLATFORM_ANDROID_LOG_H_
