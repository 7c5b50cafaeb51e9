#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <new>
#include <stdexcept>
#include <vector>

#include "host/process/worker.h"

namespace qcalc {
namespace {

constexpr const char* kVariable = "QCALC_JOURNAL";
constexpr int kWaitMilliseconds = 100;

[[noreturn]] void Fail(const char* what) { throw std::runtime_error(std::string(what) + ": " + strerror(errno)); }

void* Map(int file) { return mmap(nullptr, sizeof(Journal), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0); }

std::vector<std::string> OwnArguments() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  const std::string text(std::istreambuf_iterator<char>(file), {});
  std::vector<std::string> arguments;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = text.find('\0', start);
    arguments.push_back(text.substr(start, end - start));
    start = end == std::string::npos ? text.size() : end + 1;
  }
  return arguments;
}

/// While it lives the signal that asks this process to end waits in a file, so that what was being done can be told. A
/// worker takes it as usual.
class TerminationSignal {
 public:
  TerminationSignal() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, &before_);
    file_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
  }
  ~TerminationSignal() {
    close(file_);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  TerminationSignal(const TerminationSignal&) = delete;
  TerminationSignal& operator=(const TerminationSignal&) = delete;

  int File() const { return file_; }
  /// The signal waits no longer; false when none waited.
  bool Take() const {
    signalfd_siginfo signal;
    return read(file_, &signal, sizeof signal) == sizeof signal;
  }

  /// Starts this program; the system's error, 0 when there is none.
  int Spawn(pid_t& worker, char** arguments) const {
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    posix_spawnattr_setsigmask(&attributes, &before_);
    const int error = posix_spawn(&worker, "/proc/self/exe", nullptr, &attributes, arguments, environ);
    posix_spawnattr_destroy(&attributes);
    return error;
  }

 private:
  sigset_t before_;
  int file_;
};

ProcessEnd EndOf(int status) {
  ProcessEnd end;
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    end.status = signal;
    end.wasStopped = true;
    end.wasInterrupted = signal == SIGINT || signal == SIGTERM || signal == SIGHUP;
    end.reason = strsignal(signal);
  } else {
    end.status = WEXITSTATUS(status);
    end.reason = "it ended the process with status " + std::to_string(end.status);
  }
  return end;
}

}  // namespace

struct WorkerStarter::State {
  int file = -1;
  Journal* journal = nullptr;
};

WorkerStarter::WorkerStarter() : state_(std::make_unique<State>()) {
  state_->file = memfd_create("journal", 0);
  if (state_->file < 0 || ftruncate(state_->file, sizeof(Journal)) != 0) Fail("no memory to share");
  void* memory = Map(state_->file);
  if (memory == MAP_FAILED) Fail("no memory to share");
  state_->journal = new (memory) Journal;
}

WorkerStarter::~WorkerStarter() {
  munmap(state_->journal, sizeof(Journal));
  close(state_->file);
}

Journal& WorkerStarter::SharedJournal() { return *state_->journal; }

ProcessEnd WorkerStarter::Run(const std::function<void()>& wait) {
  setenv(kVariable, std::to_string(state_->file).c_str(), 1);
  std::vector<std::string> arguments = OwnArguments();
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const TerminationSignal termination;
  pid_t worker = 0;
  if (const int error = termination.Spawn(worker, pointers.data())) {
    errno = error;
    Fail("the program does not start");
  }
  const int handle = static_cast<int>(syscall(SYS_pidfd_open, worker, 0));
  pollfd events[] = {{handle, POLLIN, 0}, {termination.File(), POLLIN, 0}};
  int status = 0;
  // Where the system has no such handle, the end shows at the next look.
  while (waitpid(worker, &status, WNOHANG) != worker) {
    if (poll(events, std::size(events), kWaitMilliseconds) == 0) wait();
    if (termination.Take()) kill(worker, SIGTERM);
  }
  if (handle >= 0) close(handle);
  return EndOf(status);
}

Journal* InheritedJournal() {
  const char* text = getenv(kVariable);
  if (!text) return nullptr;
  const int file = std::atoi(text);
  unsetenv(kVariable);
  void* memory = Map(file);
  close(file);
  if (memory == MAP_FAILED) return nullptr;
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  return static_cast<Journal*>(memory);
}

void EndInterrupted(const ProcessEnd& end) {
  signal(end.status, SIG_DFL);
  raise(end.status);
  std::_Exit(128 + end.status);
}

void LetFaultsEndTheProcess() {}

}  // namespace qcalc
