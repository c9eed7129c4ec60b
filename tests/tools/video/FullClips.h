#pragma once

#include <filesystem>
#include <string>

#include "tests/tools/ScratchFolder.h"

/// Clips that hold more than pictures.

/// Copies the video of a clip, and adds what the container of `to` holds, told by its extension:
/// sound by an encoder (AAC, in WebM Opus), subtitles (SubRip in MKV, tx3g in MP4 and MOV, WebVTT
/// in WebM, none in TS), a font in MKV, a cover picture in MP4, and two chapters.
void AddEverything(const std::filesystem::path& from, const std::filesystem::path& to);

/// A clip of the chart with all of that, in a container by its name: .mp4, .mov, .mkv, .webm or
/// .ts. H.265 at 24 frames a second, in WebM AV1.
std::filesystem::path MakeClipWithEverything(const ScratchFolder& folder, const std::string& name,
                                             int frames = 72);
