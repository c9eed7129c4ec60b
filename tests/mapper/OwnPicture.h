#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mapper/Picture.h"

/// A picture in memory of its own, every byte of it set, with bytes past the end of each row.
class OwnPicture {
 public:
  OwnPicture(Quillon::Mapper::PixelFormat format, int width, int height);
  OwnPicture(OwnPicture&&) = default;
  OwnPicture(const OwnPicture&) = delete;
  OwnPicture& operator=(const OwnPicture&) = delete;
  OwnPicture& operator=(OwnPicture&&) = delete;
  ~OwnPicture() = default;

  const Quillon::Mapper::Picture& Shown() const { return shown_; }
  Quillon::Mapper::ConstPicture Read() const;
  const std::vector<std::byte>& Bytes() const { return bytes_; }
  std::uint16_t& Word(int plane, int x, int y);
  float* Floats(int x, int y);

  /// Samples that any signal of the format may be, the same for the same seed.
  void FillAtRandom(unsigned seed);

 private:
  std::vector<std::byte> bytes_;
  Quillon::Mapper::Picture shown_;
};
