#include "tests/windows/PeExports.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <stdexcept>

namespace {

/// A number of the file, little-endian as this processor is.
template <class Number>
Number Read(std::string_view bytes, std::size_t at) {
  if (at + sizeof(Number) > bytes.size()) throw std::runtime_error("the library ends too early");
  Number number;
  std::memcpy(&number, bytes.data() + at, sizeof(number));
  return number;
}

/// Where the tables of the export directory lie in the file.
class ExportDirectory {
 public:
  explicit ExportDirectory(std::string_view library) : library_(library) {
    const std::size_t header = Read<std::uint32_t>(library, 0x3C);
    constexpr std::uint32_t kSignature = 0x4550;  // "PE", two nulls
    constexpr std::uint16_t kPe32Plus = 0x20B;
    optional_ = header + 24;
    if (Read<std::uint32_t>(library, header) != kSignature ||
        Read<std::uint16_t>(library, optional_) != kPe32Plus) {
      throw std::runtime_error("no 64-bit library");
    }
    sectionCount_ = Read<std::uint16_t>(library, header + 6);
    sections_ = optional_ + Read<std::uint16_t>(library, header + 20);
    const auto directory = Read<std::uint32_t>(library, optional_ + 112);
    exports_ = directory == 0 ? 0 : FileOffset(directory);
  }

  bool IsEmpty() const { return exports_ == 0; }
  std::size_t FunctionCount() const { return Field(20); }
  std::size_t NameCount() const { return Field(24); }
  std::size_t NameCountPlace() const { return exports_ + 24; }
  std::size_t NamePlace(std::size_t index) const { return FileOffset(Field(32)) + index * 4; }
  std::size_t OrdinalPlace(std::size_t index) const { return FileOffset(Field(36)) + index * 2; }

  std::string Name(std::size_t index) const {
    const std::size_t at = FileOffset(Read<std::uint32_t>(library_, NamePlace(index)));
    const std::size_t end = library_.find('\0', at);
    if (end == std::string_view::npos) throw std::runtime_error("a name does not end");
    return std::string(library_.substr(at, end - at));
  }

 private:
  std::uint32_t Field(std::size_t offset) const {
    return Read<std::uint32_t>(library_, exports_ + offset);
  }

  /// Where the byte lies that is loaded at this address, counted from the library's start.
  std::size_t FileOffset(std::uint32_t address) const {
    for (std::size_t i = 0; i < sectionCount_; ++i) {
      const std::size_t section = sections_ + i * 40;
      const auto start = Read<std::uint32_t>(library_, section + 12);
      const auto bytes = Read<std::uint32_t>(library_, section + 16);
      if (address >= start && address - start < bytes) {
        return Read<std::uint32_t>(library_, section + 20) + (address - start);
      }
    }
    throw std::runtime_error("an address lies in no section");
  }

  std::string_view library_;
  std::size_t optional_ = 0;
  std::size_t sectionCount_ = 0;
  std::size_t sections_ = 0;
  std::size_t exports_ = 0;
};

}  // namespace

std::vector<std::string> ExportedNames(std::string_view library) {
  const ExportDirectory directory(library);
  std::vector<std::string> names;
  if (directory.IsEmpty()) return names;
  for (std::size_t i = 0; i < directory.NameCount(); ++i) names.push_back(directory.Name(i));
  return names;
}

std::size_t ExportCount(std::string_view library) {
  const ExportDirectory directory(library);
  return directory.IsEmpty() ? 0 : directory.FunctionCount();
}

void RemoveExport(std::string& library, std::string_view name) {
  const std::vector<std::string> names = ExportedNames(library);
  const auto found = std::find(names.begin(), names.end(), name);
  if (found == names.end()) throw std::runtime_error("there is no export " + std::string(name));
  const ExportDirectory directory(library);
  const auto index = static_cast<std::size_t>(found - names.begin());
  const std::size_t behind = names.size() - index - 1;
  const auto count = static_cast<std::uint32_t>(names.size() - 1);
  std::memmove(library.data() + directory.NamePlace(index),
               library.data() + directory.NamePlace(index + 1), behind * 4);
  std::memmove(library.data() + directory.OrdinalPlace(index),
               library.data() + directory.OrdinalPlace(index + 1), behind * 2);
  std::memcpy(library.data() + directory.NameCountPlace(), &count, sizeof(count));
}
