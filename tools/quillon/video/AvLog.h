#pragma once

#include <cstdint>
#include <string>

/// Keeps FFmpeg and the encoders under it from writing to standard error of themselves, and counts
/// what decoders complain of: some conceal damage without a word in their results.
void QuietAvLog();

/// Complaints of all decoders since the program began. Any thread.
std::int64_t DecoderComplaints();

/// The last one.
std::string LastDecoderComplaint();
