#include "tools/quillon/io/ExrStreams.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace Quillon::Cli {

bool ExrMemoryInput::read(char* destination, int count) {
  const auto wanted = static_cast<std::uint64_t>(count);
  if (position_ > bytes_.size() || wanted > bytes_.size() - position_) {
    throw std::runtime_error("it ends too early");
  }
  if (wanted > 0) std::memcpy(destination, bytes_.data() + position_, wanted);
  position_ += wanted;
  return position_ < bytes_.size();
}

void ExrMemoryOutput::write(const char* source, int count) {
  const auto length = static_cast<std::uint64_t>(count);
  if (length == 0) return;
  bytes_.resize(std::max<std::uint64_t>(bytes_.size(), position_ + length));
  std::memcpy(bytes_.data() + position_, source, length);
  position_ += length;
}

}  // namespace Quillon::Cli
