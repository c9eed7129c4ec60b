#pragma once

#include <filesystem>

#include "tools/quillon/video/AvHandles.h"

/// A container that is open for reading, and its video stream.
struct ClipInput {
  AvInputPtr container;
  AVStream* video = nullptr;
};

/// Throws CommandError unless there is a plain file of this name.
void RequireClipFile(const std::filesystem::path& path);

/// Opens a clip and finds the video stream that plays by default; cover pictures do not count.
/// Throws CommandError where the file is missing, is no clip, or holds no video.
ClipInput OpenClipInput(const std::filesystem::path& path);

/// Reads the next packet. 0, AVERROR_EOF at the end, or FFmpeg's code of what is wrong.
int ReadPacket(const ClipInput& input, AVPacket& packet);

/// Whether a packet of the video stream holds a picture that is shown: containers may mark packets
/// that are decoded for the sake of others alone.
inline bool IsShown(const AVPacket& packet) { return (packet.flags & AV_PKT_FLAG_DISCARD) == 0; }
