#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/ScratchFolder.h"

/// Where a packet lies in a file.
struct PacketPlace {
  std::size_t position = 0;
  std::size_t size = 0;
  bool isVideo = false;
};

/// A whole clip that is to be damaged.
struct AttackedClip {
  std::string name;  ///< its extension tells the container
  std::string bytes;
  std::size_t frames = 0;
  std::vector<PacketPlace> packets;  ///< in the order of the file
};

/// Clips in each container and codec that is written and some that are read alone, with sound,
/// subtitles and attachments where the container holds them.
std::vector<AttackedClip> MakeAttackedClips(const ScratchFolder& folder);
