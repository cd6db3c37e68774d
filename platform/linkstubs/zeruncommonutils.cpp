// Stands in for the device's libzeruncommonutils at link time.
#include <zerun/osutils.h>

void Zerun::OsUtils::GetTime(ZerunTime*) {}

FILE* Zerun::OsUtils::FOpen(const char*, const char*) { return nullptr; }

size_t Zerun::OsUtils::FRead(void*, size_t, size_t, size_t, FILE*) { return 0; }

int Zerun::OsUtils::FClose(FILE*) { return 0; }
