#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <ImfIO.h>

namespace Quillon::Cli {

/// OpenEXR's view of a file that lies in memory.
class ExrMemoryInput : public Imf::IStream {
 public:
  ExrMemoryInput(const std::string& name, std::span<const std::uint8_t> bytes)
      : Imf::IStream(name.c_str()), bytes_(bytes) {}

  bool read(char* destination, int count) override;
  std::uint64_t tellg() override { return position_; }
  void seekg(std::uint64_t position) override { position_ = position; }

 private:
  std::span<const std::uint8_t> bytes_;
  std::uint64_t position_ = 0;
};

/// A file that OpenEXR writes into memory.
class ExrMemoryOutput : public Imf::OStream {
 public:
  explicit ExrMemoryOutput(const std::string& name) : Imf::OStream(name.c_str()) {}

  void write(const char* source, int count) override;
  std::uint64_t tellp() override { return position_; }
  void seekp(std::uint64_t position) override { position_ = position; }

  const std::vector<std::uint8_t>& Bytes() const { return bytes_; }

 private:
  std::vector<std::uint8_t> bytes_;
  std::uint64_t position_ = 0;
};

}  // namespace Quillon::Cli
