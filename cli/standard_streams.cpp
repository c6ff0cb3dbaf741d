#include "cli/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#include "cli/commands.h"
#include "cli/terminal.h"

namespace qvcli {

void guard_standard_streams() {
  // A device that refuses every byte: a closed standard output is reported like a full one.
  for (const int number : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    if (fcntl(number, F_GETFD) == -1 && open(number == STDIN_FILENO ? "/dev/null" : "/dev/full", O_RDWR) != number)
      _exit(k_fault);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);  // a limit on the size of files is an error of the write too
}

int check_output(int code) {
  errno = 0;
  const bool failed = std::ferror(stdout) != 0;
  if (std::fflush(stdout) == 0 && !failed) return code;
  print(stderr, "qvbrisk: cannot write to standard output%s%s\n", errno == 0 ? "" : ": ",
        errno == 0 ? "" : std::strerror(errno));
  return code == k_done ? k_fault : code;
}

}  // namespace qvcli
