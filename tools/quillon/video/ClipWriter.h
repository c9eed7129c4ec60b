#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/quillon/video/AvPictures.h"
#include "tools/quillon/video/ClipInput.h"
#include "tools/quillon/video/Encoding.h"
#include "tools/quillon/video/PacketWatch.h"
#include "tools/quillon/video/PassedPackets.h"

namespace Quillon::Cli {

/// Writes a clip: pictures through an encoder, all other streams as they are. The file can be
/// played as far as it has come even when the program is killed. Not for several threads at a time.
class ClipWriter {
 public:
  /// Makes the file, which stays when this fails. `passOn` is the clip whose other streams,
  /// chapters, rotation and texts are taken over as far as the container holds them; null: none.
  /// Throws CommandError.
  ClipWriter(const std::filesystem::path& path, const Encoding& encoding, const ClipInput* passOn);
  ~ClipWriter();
  ClipWriter(const ClipWriter&) = delete;
  ClipWriter& operator=(const ClipWriter&) = delete;

  /// Sentences on what was left out.
  const std::vector<std::string>& Remarks() const { return remarks_; }

  /// Time stamps in the encoding's time base, rising.
  void WriteFrame(AVFrame& frame);
  /// A packet of a stream of `passOn`; those of streams that are not taken over are dropped.
  void PassOn(const AVPacket& packet);
  /// An encoded packet of an earlier run with the same encoding.
  void WriteEncoded(const AVPacket& packet, AVRational timeBase);

  /// Frames that were written; less may have reached the file where writing failed.
  std::int64_t FramesWritten() const { return framesWritten_; }
  /// Whether the file could not be written to.
  bool HasFailed() const { return failed_; }

  /// Packets that were passed on and that the container refuses for what they hold; they are left
  /// out.
  const ClipDamage& Refused() const { return refused_; }

  /// Writes what the encoder still holds; no frame can come after it.
  void Flush();
  /// The same, and the end of the file.
  void Finish();
  /// Ends the file with what has reached it.
  void Abandon();

 private:
  void AddPassedStreams(const ClipInput& source);
  void AddStream(const ClipInput& source, const AVStream& from);
  void WriteHeader();
  void Drain();
  void Mux(AVPacket* packet);
  void Refuse(int result);
  [[noreturn]] void FailWriting(int result);

  std::filesystem::path path_;
  std::string source_;  ///< where passed streams come from, for messages
  Encoding encoding_;
  AvOutputPtr container_;
  std::unique_ptr<Encoder> encoder_;
  AVStream* video_ = nullptr;
  std::vector<int> streamOf_;  ///< stream here of each stream of the source; -1: none
  std::vector<AVRational> sourceTimeBases_;
  std::vector<std::string> passedNames_;  ///< by the streams here; of the source's streams
  PassedPackets passed_;
  ClipDamage refused_;
  AvPacketPtr packet_;
  std::int64_t framesWritten_ = 0;
  std::optional<std::int64_t> lastDts_;
  std::vector<std::string> remarks_;
  bool open_ = false;
  bool failed_ = false;
};

/// Writes the clip again, packet by packet, with its head at one place, as players expect of a
/// finished MP4 or MOV file, and with the chapters and covers of `passOn`, where given. Throws
/// CommandError.
void RewriteClip(const std::filesystem::path& from, const std::filesystem::path& to,
                 const ClipInput* passOn);

/// MP4 and MOV are written in fragments while the run lasts, and so have to be written again.
bool NeedsRewriting(const std::filesystem::path& path);

}  // namespace Quillon::Cli
