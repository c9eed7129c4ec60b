#include "tests/campaign/WatchedRun.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what + ": " + std::strerror(errno));
}

void LimitFiles(rlim_t bytes) {
  if (bytes == RLIM_INFINITY) return;
  std::signal(SIGXFSZ, SIG_IGN);
  const rlimit limit{bytes, bytes};
  setrlimit(RLIMIT_FSIZE, &limit);
}

}  // namespace

WatchedRun::Stream::Stream() {
  if (pipe2(ends_, O_CLOEXEC) != 0) Fail("cannot make a pipe");
  fcntl(ends_[0], F_SETFL, O_NONBLOCK);
}

WatchedRun::Stream::~Stream() {
  close(ends_[0]);
  CloseWriteEnd();
}

void WatchedRun::Stream::CloseWriteEnd() {
  if (ends_[1] >= 0) close(ends_[1]);
  ends_[1] = -1;
}

void WatchedRun::Stream::ReadInto(std::string& text) const {
  char bytes[4096];
  for (;;) {
    const ssize_t count = read(ends_[0], bytes, sizeof bytes);
    if (count <= 0) return;
    text.append(bytes, static_cast<std::size_t>(count));
  }
}

WatchedRun::WatchedRun(const std::vector<std::string>& arguments, const RunLimits& limits)
    : limits_(limits), deadline_(std::chrono::steady_clock::now() + limits.time) {
  process_ = fork();
  if (process_ < 0) Fail("cannot fork");
  if (process_ == 0) RunChild(arguments);
  out_.CloseWriteEnd();
  err_.CloseWriteEnd();
}

/// In the child: becomes the program, or ends.
void WatchedRun::RunChild(const std::vector<std::string>& arguments) {
  std::vector<std::string> words = {QUILLON_EXECUTABLE};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  const int in = open("/dev/null", O_RDONLY);
  const int out = limits_.standardOutput.empty() ? out_.WriteEnd()
                                                 : open(limits_.standardOutput.c_str(), O_WRONLY);
  if (dup2(in, STDIN_FILENO) < 0 || dup2(out, STDOUT_FILENO) < 0 ||
      dup2(err_.WriteEnd(), STDERR_FILENO) < 0) {
    _exit(127);
  }
  LimitFiles(limits_.fileBytes);
  execv(argv[0], argv.data());
  _exit(127);
}

WatchedRun::~WatchedRun() {
  if (ended_) return;
  Signal(SIGKILL);
  waitpid(process_, nullptr, 0);
}

void WatchedRun::Signal(int signal) const {
  if (!ended_) kill(process_, signal);
}

bool WatchedRun::Poll() {
  if (ended_) return true;
  int status = 0;
  rusage usage{};
  ended_ = wait4(process_, &status, WNOHANG, &usage) == process_;
  out_.ReadInto(outcome_.out);
  err_.ReadInto(outcome_.err);
  if (!ended_) return false;
  outcome_.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  outcome_.peakBytes = std::int64_t{usage.ru_maxrss} * 1024;
  return true;
}

bool WatchedRun::EndsWithin(std::chrono::milliseconds time) {
  const auto until = std::chrono::steady_clock::now() + time;
  while (!Poll()) {
    if (std::chrono::steady_clock::now() >= until) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

RunOutcome WatchedRun::Wait() {
  const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
      deadline_ - std::chrono::steady_clock::now());
  if (!EndsWithin(left)) {
    outcome_.hung = true;
    Signal(SIGKILL);
    EndsWithin(std::chrono::seconds(10));
  }
  return outcome_;
}
