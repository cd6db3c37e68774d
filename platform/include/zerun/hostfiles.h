// What the host's stand-in for libzeruncommonutils adds to the device's interface: device paths can be sent to files of
// the host. Not to be had on a device; nothing under system/ includes it.
#ifndef ITOF_PLATFORM_ZERUN_HOSTFILES_H_
#define ITOF_PLATFORM_ZERUN_HOSTFILES_H_

#include <string>

namespace ZerunHost {

/// From now on `Zerun::OsUtils::FOpen(devicePath, ...)` opens `hostPath` instead; an empty `hostPath` ends that. One
/// redirection at a time, and it goes before the root of the environment variable ZERUN_HOST_ROOT, which is laid under
/// every absolute path that is not redirected. Not for use while another thread opens a file.
void RedirectPath(const std::string& devicePath, const std::string& hostPath);

}  // namespace ZerunHost

#endif  // ITOF_PLATFORM_ZERUN_HOSTFILES_H_
