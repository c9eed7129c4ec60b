#include "tests/windows/PeExports.h"

#include <cstdint>

#include "tests/windows/Bytes.h"

namespace {

/// The library's export directory, and where its tables lie in the file.
class ExportDirectory {
 public:
  explicit ExportDirectory(std::string_view library) : library_(library) {
    const std::size_t header = ReadNumber<std::uint32_t>(library, 0x3C);
    const std::size_t optionalHeader = header + 24;
    constexpr std::uint32_t kSignature = 0x4550;  // "PE" and two nulls
    constexpr std::uint16_t kPe32Plus = 0x20B;
    if (ReadNumber<std::uint32_t>(library, header) != kSignature ||
        ReadNumber<std::uint16_t>(library, optionalHeader) != kPe32Plus) {
      throw std::runtime_error("no 64-bit library");
    }
    sectionCount_ = ReadNumber<std::uint16_t>(library, header + 6);
    sections_ = optionalHeader + ReadNumber<std::uint16_t>(library, header + 20);
    const auto address = ReadNumber<std::uint32_t>(library, optionalHeader + 112);
    if (address != 0) directory_ = FileOffset(address);
  }

  std::size_t FunctionCount() const { return Field(20); }
  std::size_t NameCount() const { return Field(24); }
  std::size_t NameCountPlace() const { return directory_ + 24; }
  std::size_t NamePlace(std::size_t index) const { return FileOffset(Field(32)) + index * 4; }
  std::size_t OrdinalPlace(std::size_t index) const { return FileOffset(Field(36)) + index * 2; }

  std::string_view Name(std::size_t index) const {
    return ReadText(library_, FileOffset(ReadNumber<std::uint32_t>(library_, NamePlace(index))));
  }

  /// The place of what a name stands for, among the functions.
  std::size_t FunctionOf(std::size_t name) const {
    return ReadNumber<std::uint16_t>(library_, OrdinalPlace(name));
  }

  bool IsCode(std::size_t function) const {
    constexpr std::uint32_t kContainsCode = 0x20;
    const std::size_t place = FileOffset(Field(28)) + function * 4;
    const std::size_t section = SectionOf(ReadNumber<std::uint32_t>(library_, place));
    return (ReadNumber<std::uint32_t>(library_, section + 36) & kContainsCode) != 0;
  }

 private:
  /// 0 where there is no directory.
  std::uint32_t Field(std::size_t offset) const {
    return directory_ == 0 ? 0 : ReadNumber<std::uint32_t>(library_, directory_ + offset);
  }

  /// The header of the section that is loaded around an address.
  std::size_t SectionOf(std::uint32_t address) const {
    for (std::size_t i = 0; i < sectionCount_; ++i) {
      const std::size_t section = sections_ + i * 40;
      const auto bytes = ReadNumber<std::uint32_t>(library_, section + 8);
      const auto start = ReadNumber<std::uint32_t>(library_, section + 12);
      if (address >= start && address - start < bytes) return section;
    }
    throw std::runtime_error("an address lies in no section");
  }

  /// Where the byte lies that is loaded at this address.
  std::size_t FileOffset(std::uint32_t address) const {
    const std::size_t section = SectionOf(address);
    return address - ReadNumber<std::uint32_t>(library_, section + 12) +
           ReadNumber<std::uint32_t>(library_, section + 20);
  }

  std::string_view library_;
  std::size_t sectionCount_ = 0;
  std::size_t sections_ = 0;
  std::size_t directory_ = 0;
};

std::size_t IndexOf(const ExportDirectory& directory, std::string_view name) {
  for (std::size_t i = 0; i < directory.NameCount(); ++i) {
    if (directory.Name(i) == name) return i;
  }
  throw std::runtime_error("there is no export " + std::string(name));
}

}  // namespace

std::vector<Export> ReadExports(std::string_view library) {
  const ExportDirectory directory(library);
  std::vector<Export> exports(directory.FunctionCount());
  for (std::size_t i = 0; i < exports.size(); ++i) exports[i].isCode = directory.IsCode(i);
  for (std::size_t i = 0; i < directory.NameCount(); ++i) {
    exports.at(directory.FunctionOf(i)).name = directory.Name(i);
  }
  return exports;
}

void RemoveExport(std::string& library, std::string_view name) {
  const ExportDirectory directory(library);
  const std::size_t index = IndexOf(directory, name);
  const auto count = static_cast<std::uint32_t>(directory.NameCount() - 1);
  const std::size_t behind = count - index;
  // The system searches the names by halves: they stay in order.
  std::memmove(library.data() + directory.NamePlace(index),
               library.data() + directory.NamePlace(index + 1), behind * 4);
  std::memmove(library.data() + directory.OrdinalPlace(index),
               library.data() + directory.OrdinalPlace(index + 1), behind * 2);
  std::memcpy(library.data() + directory.NameCountPlace(), &count, sizeof(count));
}
