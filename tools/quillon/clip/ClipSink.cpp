#include "tools/quillon/clip/ClipSink.h"

#include <algorithm>
#include <limits>
#include <system_error>

#include "tools/quillon/io/TargetFile.h"
#include "tools/quillon/process/ExitCodes.h"
#include "tools/quillon/process/Words.h"

extern "C" {
#include <libavutil/frame.h>
}

namespace Quillon::Cli {

namespace fs = std::filesystem;

namespace {

/// Closed captions travel with the pictures.
void CopyCaptions(const AVFrame& from, AVFrame& to) {
  const AVFrameSideData* captions = av_frame_get_side_data(&from, AV_FRAME_DATA_A53_CC);
  if (captions == nullptr) return;
  AVBufferRef* buffer = av_buffer_ref(captions->buf);
  if (av_frame_new_side_data_from_buf(&to, AV_FRAME_DATA_A53_CC, buffer) == nullptr) {
    av_buffer_unref(&buffer);
  }
}

void Move(const fs::path& from, const fs::path& to) {
  std::error_code error;
  fs::rename(from, to, error);
  if (!error) return;
  throw CommandError(ExitCode::CannotWrite, from.string() + ": it cannot be renamed to " +
                                                to.string() + " (" + error.message() +
                                                "); check the permissions of its folder");
}

}  // namespace

ClipSink::ClipSink(const fs::path& output, bool overwrite, const Encoding& encoding,
                   const ClipInput* passOn, const std::string& settings,
                   const EncodedFrames& earlier, std::int64_t firstPts)
    : files_(output),
      overwrite_(overwrite),
      encoding_(encoding),
      pool_(encoding.pixelFormat, encoding.width, encoding.height),
      passOn_(passOn),
      resumes_(earlier.count > 0),
      lastPts_(std::numeric_limits<std::int64_t>::min()) {
  try {
    Begin(settings, earlier, firstPts);
  } catch (...) {
    RemoveBegun();
    throw;
  }
}

void ClipSink::Begin(const std::string& settings, const EncodedFrames& earlier,
                     std::int64_t firstPts) {
  if (resumes_) {
    EncodedFrames kept = earlier;
    kept.clip = files_.earlier;
    if (earlier.clip != files_.earlier) Move(earlier.clip, files_.earlier);
    earlier_ = std::make_unique<EarlierFrames>(kept, firstPts, encoding_.timeBase);
  } else {
    files_.Remove();
  }
  // First, so that no part is without it when the run is killed.
  files_.WriteNote(settings);
  writer_ = std::make_unique<ClipWriter>(files_.clip, encoding_, passOn_);
}

void ClipSink::RemoveBegun() {
  writer_.reset();
  std::error_code ignored;
  if (resumes_) {
    fs::remove(files_.clip, ignored);
  } else {
    files_.Remove();
  }
}

void ClipSink::WriteEarlier(double until) {
  if (earlier_ == nullptr) return;
  const AVRational timeBase = earlier_->TimeBase();
  while (const AVPacket* packet = earlier_->Next()) {
    if (static_cast<double>(packet->dts) * av_q2d(timeBase) > until) return;
    writer_->WriteEncoded(*packet, timeBase);
    earlier_->Advance();
  }
}

void ClipSink::PassOn(const AVPacket& packet) {
  const AVRational timeBase = passOn_->container->streams[packet.stream_index]->time_base;
  WriteEarlier(static_cast<double>(packet.dts) * av_q2d(timeBase));
  writer_->PassOn(packet);
}

MappedPicture ClipSink::NewPicture() {
  MappedPicture picture;
  picture.samples = pool_.Take();
  picture.frame =
      ShowAvFrame(picture.samples, orvmediatypes::color::ColorSpace(encoding_.tags.colors));
  return picture;
}

void ClipSink::Write(MappedPicture picture, const ClipPicture& source) {
  WriteEarlier(std::numeric_limits<double>::infinity());
  AVFrame& frame = *picture.samples;
  const auto& colors = encoding_.tags.colors;
  frame.color_primaries = static_cast<AVColorPrimaries>(colors.primaries);
  frame.color_trc = static_cast<AVColorTransferCharacteristic>(colors.transfer);
  frame.colorspace = static_cast<AVColorSpace>(colors.matrix);
  frame.color_range = colors.fullRange ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG;
  frame.sample_aspect_ratio = encoding_.sampleAspect;
  // Some clips give two frames one time; encoders want each later than the one before.
  frame.pts = std::max(picture.pts, lastPts_ + 1);
  lastPts_ = frame.pts;
  if (source.samples != nullptr) CopyCaptions(*source.samples, frame);
  writer_->WriteFrame(frame);
}

void ClipSink::Flush() {
  WriteEarlier(std::numeric_limits<double>::infinity());
  writer_->Flush();
}

void ClipSink::Finish() {
  Flush();
  writer_->Finish();
  writer_.reset();
  earlier_.reset();
  if (NeedsRewriting(files_.output)) Rewrite();
  if (overwrite_) CheckTargetFile(files_.output, true);
  if (const std::error_code error = GiveName(files_.clip, files_.output, overwrite_)) {
    throw CommandError(ExitCode::CannotWrite,
                       files_.output.string() + ": the finished clip cannot be given its name (" +
                           error.message() + "); it is " + files_.clip.string());
  }
  files_.Remove();
}

void ClipSink::Rewrite() {
  Move(files_.clip, files_.earlier);
  try {
    RewriteClip(files_.earlier, files_.clip, passOn_);
  } catch (...) {
    Move(files_.earlier, files_.clip);
    holdsAll_ = true;
    throw;
  }
}

std::int64_t ClipSink::FramesLeft() const {
  return writer_->HasFailed() ? FindWholeGroups(files_.clip).count : writer_->FramesWritten();
}

std::string ClipSink::Abandon(bool atOnce) {
  if (holdsAll_) return files_.clip.string() + " holds all frames, with which --resume goes on";
  if (writer_ == nullptr) return {};
  try {
    WriteEarlier(std::numeric_limits<double>::infinity());
    if (atOnce) {
      writer_->Abandon();
    } else {
      writer_->Finish();
    }
  } catch (const CommandError&) {  // the file ends where it can be written no more
  }
  const std::int64_t frames = FramesLeft();
  if (frames == 0) {
    RemoveBegun();
    return {};
  }
  writer_.reset();
  return files_.clip.string() + " holds " + Counted(frames, "frame");
}

}  // namespace Quillon::Cli
