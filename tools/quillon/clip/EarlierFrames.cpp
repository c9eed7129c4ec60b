#include "tools/quillon/clip/EarlierFrames.h"

#include <new>

#include "tools/quillon/process/ExitCodes.h"

namespace Quillon::Cli {

namespace {

const AVBitStreamFilter* StartCodesFor(AVCodecID codec) {
  if (codec == AV_CODEC_ID_H264) return av_bsf_get_by_name("h264_mp4toannexb");
  if (codec == AV_CODEC_ID_HEVC) return av_bsf_get_by_name("hevc_mp4toannexb");
  return nullptr;
}

}  // namespace

EarlierFrames::EarlierFrames(const EncodedFrames& frames, std::int64_t firstPts,
                             AVRational timeBase)
    : input_(OpenClipInput(frames.clip)),
      packet_(MakeAvPacket()),
      left_(frames.count),
      shift_(av_rescale_q(firstPts, timeBase, TimeBase()) - frames.firstPts) {
  OpenStartCodes();
  if (left_ > 0) Read();
}

void EarlierFrames::OpenStartCodes() {
  const AVBitStreamFilter* filter = StartCodesFor(input_.video->codecpar->codec_id);
  if (filter == nullptr) return;
  AVBSFContext* made = nullptr;
  if (av_bsf_alloc(filter, &made) < 0) throw std::bad_alloc();
  startCodes_.reset(made);
  made->time_base_in = input_.video->time_base;
  if (avcodec_parameters_copy(made->par_in, input_.video->codecpar) < 0 || av_bsf_init(made) < 0) {
    throw std::bad_alloc();
  }
}

void EarlierFrames::Read() {
  int result = 0;
  do {
    result = ReadPacket(input_, *packet_);
  } while (result >= 0 && packet_->stream_index != input_.video->index);
  if (result >= 0 && startCodes_ != nullptr) {
    result = av_bsf_send_packet(startCodes_.get(), packet_.get());
    if (result >= 0) result = av_bsf_receive_packet(startCodes_.get(), packet_.get());
  }
  if (result < 0) {
    throw CommandError(ExitCode::CannotRead,
                       std::string(input_.container->url) +
                           ": the earlier run's frames cannot be read again (" +
                           AvErrorText(result) + "); begin anew without --resume");
  }
  packet_->pts += shift_;
  packet_->dts += shift_;
}

void EarlierFrames::Advance() {
  if (--left_ > 0) Read();
}

}  // namespace Quillon::Cli
