#include "tests/tools/RunQuillon.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

pid_t Start(const fs::path& program, const std::vector<std::string>& arguments, const fs::path& out,
            const fs::path& err) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, out.c_str(), kWrite, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, err.c_str(), kWrite, 0600);
  pid_t process = 0;
  const int started = posix_spawn(&process, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (started != 0) throw std::runtime_error("cannot start " + words[0]);
  return process;
}

}  // namespace

pid_t StartQuillon(const std::vector<std::string>& arguments, const fs::path& out,
                   const fs::path& err) {
  return Start(QUILLON_EXECUTABLE, arguments, out, err);
}

int WaitFor(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

RunResult RunQuillon(const std::vector<std::string>& arguments) {
  return RunProgram(QUILLON_EXECUTABLE, arguments);
}

RunResult RunProgram(const fs::path& program, const std::vector<std::string>& arguments) {
  const ScratchFolder streams;
  const int exitCode = WaitFor(Start(program, arguments, streams / "out", streams / "err"));
  return {exitCode, ReadFile(streams / "out"), ReadFile(streams / "err")};
}

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}
