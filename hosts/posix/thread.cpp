#include "hosts/posix/thread.h"

#include <pthread.h>

#include <csignal>

namespace keyvora::posix {

void prepareThread(const std::string& label) {
  // The kernel keeps 15 characters; in a reverse-domain label the end says the most.
  constexpr std::size_t longest = 15;
  const auto name = label.size() > longest ? label.substr(label.size() - longest) : label;
#ifdef __APPLE__
  ::pthread_setname_np(name.c_str());
#else
  ::pthread_setname_np(::pthread_self(), name.c_str());
#endif
  sigset_t all;
  sigfillset(&all);
  for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP}) sigdelset(&all, fault);
  ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
}

}  // namespace keyvora::posix
