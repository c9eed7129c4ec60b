#include "tests/gpu/driver/ProbeRun.h"

#include <array>
#include <cstdio>
#include <memory>
#include <stdexcept>

const char* const kDriverFile = "libcuda.so.1";

void RemoveEntryPoints(std::string& library, const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    // By another name it is not found.
    const std::string entry = '\0' + name + '\0';
    auto at = library.find(entry);
    if (at == std::string::npos) throw std::runtime_error("there is no entry point " + name);
    for (; at != std::string::npos; at = library.find(entry, at)) library[at + 1] = '?';
  }
}

std::string RunProbe(const std::filesystem::path& folder, int answer,
                     const std::vector<std::filesystem::path>& arguments) {
  std::string command = "QUILLON_CUINIT=" + std::to_string(answer) + " LD_LIBRARY_PATH='" +
                        folder.string() + "':\"$LD_LIBRARY_PATH\" '" QUILLON_PROBE "'";
  for (const auto& argument : arguments) command += " '" + argument.string() + "'";
  const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
  std::string output;
  std::array<char, 4096> chunk{};
  while (std::fgets(chunk.data(), chunk.size(), pipe.get()) != nullptr) output += chunk.data();
  return output;
}
