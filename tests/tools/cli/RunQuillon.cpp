#include "tests/tools/cli/RunQuillon.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

RunResult RunQuillon(const std::vector<std::string>& arguments) {
  const ScratchFolder streams;
  const std::string outPath = streams / "out";
  const std::string errPath = streams / "err";

  std::vector<std::string> words = {QUILLON_EXECUTABLE};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  argv.reserve(words.size() + 1);
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  constexpr int kWrite = O_WRONLY | O_CREAT | O_TRUNC;
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(), kWrite, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(), kWrite, 0600);
  pid_t child = 0;
  const int started = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (started != 0) throw std::runtime_error("cannot start " + words[0]);

  int status = 0;
  waitpid(child, &status, 0);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadFile(outPath), ReadFile(errPath)};
}

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void WriteFile(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}
