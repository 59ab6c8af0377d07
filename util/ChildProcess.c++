#include "util/ChildProcess.h"

#include <fcntl.h>
#include <linux/close_range.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

void keepOnlyStandardDescriptors() {
  // One system call where the kernel has it (Linux 5.11 and later).
  if (syscall(SYS_close_range, 3u, ~0u, CLOSE_RANGE_CLOEXEC) == 0) return;
  rlimit limit{};
  rlim_t last = getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY
                    ? limit.rlim_cur
                    : 65536;
  for (rlim_t fd = 3; fd < last; ++fd) {
    int flags = fcntl(static_cast<int>(fd), F_GETFD);
    if (flags >= 0) fcntl(static_cast<int>(fd), F_SETFD, flags | FD_CLOEXEC);
  }
}
