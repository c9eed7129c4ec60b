#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>

#include "tools/quillon/io/PixelLimit.h"
#include "tools/quillon/video/AvHandles.h"
#include "tools/quillon/video/AvLog.h"

namespace Quillon::Cli {

/// A container that is open for reading, and its video stream.
struct ClipInput {
  std::unique_ptr<AvComplaints> complaints;  ///< of the container
  AvInputPtr container;
  AVStream* video = nullptr;
};

/// Throws CommandError unless there is a plain file of this name.
void RequireClipFile(const std::filesystem::path& path);

/// Opens a clip and finds the video stream that plays by default; cover pictures do not count.
/// Throws CommandError where the file is missing, is no clip, holds no video, or has frames of more
/// than `maxPixels`.
ClipInput OpenClipInput(const std::filesystem::path& path,
                        std::int64_t maxPixels = kDefaultMaxPixels);

/// Reads the next packet. 0, AVERROR_EOF at the end, or FFmpeg's code of what is wrong.
int ReadPacket(const ClipInput& input, AVPacket& packet);

/// Whether a packet of the video stream holds a picture that is shown: containers may mark packets
/// that are decoded for the sake of others alone.
inline bool IsShown(const AVPacket& packet) { return (packet.flags & AV_PKT_FLAG_DISCARD) == 0; }

/// Whether a clip may begin in the middle of a group of pictures, as recordings and raw streams do:
/// what comes before its first key frame is then no part of it.
bool CanBeginAnywhere(const ClipInput& input);

/// "stream 1 (audio, aac)".
std::string NameOfStream(const AVStream& stream);

}  // namespace Quillon::Cli
