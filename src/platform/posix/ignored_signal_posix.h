// Which signals that are ignored must stay so.
#ifndef KOVADX_PLATFORM_POSIX_IGNORED_SIGNAL_POSIX_H
#define KOVADX_PLATFORM_POSIX_IGNORED_SIGNAL_POSIX_H

#include <signal.h>

namespace kova::os {

// True for a signal that whoever started this program wanted ignored: nohup does that to the hang-up, a shell to the
// keyboard's signals for what it runs in the background. Safe between fork and exec.
inline bool staysIgnored(int number, const struct sigaction& present) {
  return present.sa_handler == SIG_IGN && (number == SIGHUP || number == SIGINT || number == SIGQUIT);
}

}  // namespace kova::os

#endif
