// Stands in for the device's liborvolog at link time.
#include <orvolog/orvolog.h>

uint64_t g_enableOrvxLogs = 0;
int g_enableSystemLog = 0;

void OrvoLog::LogSystem(const char*, const char*, const char*, const char*, const char*, int, const char*, ...) {}
