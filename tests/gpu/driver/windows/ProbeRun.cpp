#include "tests/gpu/driver/ProbeRun.h"

#include <array>
#include <memory>
#include <stdexcept>

#include <windows.h>

#include "tests/windows/PeExports.h"

namespace {

namespace fs = std::filesystem;

struct CloseIt {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using Handle = std::unique_ptr<void, CloseIt>;

void Require(BOOL success, const char* what) {
  if (!success) throw std::runtime_error(std::string("cannot ") + what);
}

/// Starts a program whose output goes into the pipe.
Handle Start(std::wstring command, HANDLE output) {
  STARTUPINFOW startup{};
  startup.cb = sizeof(startup);
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = output;
  startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
  PROCESS_INFORMATION process{};
  Require(CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                         &startup, &process),
          "start the probe");
  CloseHandle(process.hThread);
  return Handle(process.hProcess);
}

std::string ReadAll(HANDLE pipe) {
  std::string text;
  std::array<char, 4096> chunk{};
  for (DWORD got = 0;
       ReadFile(pipe, chunk.data(), chunk.size(), &got, nullptr) != FALSE && got > 0;) {
    text.append(chunk.data(), got);
  }
  std::erase(text, '\r');
  return text;
}

}  // namespace

const char* const kDriverFile = "nvcuda.dll";

void RemoveEntryPoints(std::string& library, const std::vector<std::string>& names) {
  for (const std::string& name : names) RemoveExport(library, name);
}

std::string RunProbe(const fs::path& folder, int answer, const std::vector<fs::path>& arguments) {
  // Libraries are looked for beside the program first, where those of the system cannot precede.
  const fs::path probe = folder / "probe.exe";
  fs::copy_file(QUILLON_PROBE, probe, fs::copy_options::overwrite_existing);
  std::wstring command = L'"' + probe.wstring() + L'"';
  for (const fs::path& argument : arguments) command += L" \"" + argument.wstring() + L'"';

  SECURITY_ATTRIBUTES inherited{sizeof(inherited), nullptr, TRUE};
  HANDLE read = nullptr;
  HANDLE write = nullptr;
  Require(CreatePipe(&read, &write, &inherited, 0), "make a pipe");
  const Handle output(read);
  Handle input(write);
  Require(SetHandleInformation(read, HANDLE_FLAG_INHERIT, 0), "keep the pipe's end");
  Require(SetEnvironmentVariableW(L"QUILLON_CUINIT", std::to_wstring(answer).c_str()),
          "set the environment");
  const Handle process = Start(std::move(command), write);
  input.reset();
  std::string text = ReadAll(read);
  WaitForSingleObject(process.get(), INFINITE);
  return text;
}
