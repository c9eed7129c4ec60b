#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/tools/RunQuillon.h"
#include "tests/tools/ScratchFolder.h"
#include "tools/quillon/video/AvHandles.h"
#include "tools/quillon/video/Encoding.h"

namespace Quillon::Cli {

/// Clips for tests, and what is in them.

/// Throws where a call of FFmpeg failed.
void RequireAv(int result, const char* what);

/// A second of a container that is being made, as a chapter.
void AddChapter(AVFormatContext& container, std::int64_t second);

/// A small HDR10 clip of the chart, in MP4 or, by its name, another container.
std::filesystem::path MakeChartClip(const ScratchFolder& folder, const std::string& name,
                                    const std::vector<std::string>& options = {});

/// A clip of plain frames, the n-th of them grey of code value `firstCode` + n, encoded as told.
void WriteGreyClip(const std::filesystem::path& path, const Encoding& encoding, int frames,
                   int firstCode);

/// Lossless 10-bit 4:2:0 of 64x48 with the tags of HDR10, for `WriteGreyClip`.
Encoding GreyEncoding();

struct DecodedFrame {
  double seconds = 0.0;
  std::string samples;
  friend bool operator==(const DecodedFrame&, const DecodedFrame&) = default;
};
/// Throws where the clip is damaged.
std::vector<DecodedFrame> DecodeClip(const std::filesystem::path& path);
/// Up to where the clip was broken off.
std::vector<DecodedFrame> DecodePart(const std::filesystem::path& path);
std::vector<std::string> SamplesOf(const std::vector<DecodedFrame>& frames);
std::vector<double> TimesOf(const std::vector<DecodedFrame>& frames);

struct StreamPacket {
  double seconds = 0.0;
  std::string bytes;
  friend bool operator==(const StreamPacket&, const StreamPacket&) = default;
};
/// Packets of the first stream of a type.
std::vector<StreamPacket> PacketsOf(const std::filesystem::path& path, AVMediaType type);

/// Copies a clip, adds a stream of sound with known samples, and two chapters.
void AddSound(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace Quillon::Cli
