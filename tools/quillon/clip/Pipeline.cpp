#include "tools/quillon/clip/Pipeline.h"

#include <exception>
#include <limits>
#include <mutex>
#include <thread>
#include <utility>
#include <variant>

#include "tools/quillon/clip/BoundedQueue.h"

namespace Quillon::Cli {

namespace {

constexpr std::size_t kPicturesAhead = 3;
constexpr std::size_t kOutputsAhead = 6;

struct Mapped {
  MappedPicture picture;
  ClipPicture source;
};
using Output = std::variant<Mapped, SourcePacket>;

class Pipeline {
 public:
  explicit Pipeline(const PipelineWork& work) : work_(work) {}

  bool Run() {
    std::jthread reader([this] { Guarded([this] { Read(); }); });
    std::jthread writer([this] { Guarded([this] { Write(); }); });
    bool stopped = false;
    Guarded([&] { stopped = !Map(); });
    if (stopped) Cancel();
    reader.join();
    outputs_.Finish();
    writer.join();
    if (error_) std::rethrow_exception(error_);
    return !stopped;
  }

 private:
  /// Runs a stage; what it throws ends all of them.
  template <class Stage>
  void Guarded(const Stage& stage) {
    try {
      stage();
    } catch (...) {
      const std::lock_guard lock(mutex_);
      if (!error_) error_ = std::current_exception();
      Cancel();
    }
  }

  void Cancel() {
    pictures_.Cancel();
    outputs_.Cancel();
  }

  void Read() {
    const std::int64_t last =
        work_.selection.Last().value_or(std::numeric_limits<std::int64_t>::max());
    while (auto next = work_.source.NextItem()) {
      // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the loop checks it
      if (auto* packet = std::get_if<SourcePacket>(&*next)) {
        if (!PassOn(std::move(*packet))) return;
        continue;
      }
      auto& picture = std::get<ClipPicture>(*next);
      const std::int64_t number = picture.number;
      if (IsWanted(number) && !pictures_.Push(std::move(picture))) return;
      if (number >= last) break;
    }
    pictures_.Finish();
    if (!work_.selection.IsAll()) ReadPacketsOfTheLastPicture();
  }

  void ReadPacketsOfTheLastPicture() {
    while (SourcePacket packet = work_.source.NextPacket(work_.times.EndSeconds())) {
      if (!PassOn(std::move(packet))) return;
    }
  }

  bool IsWanted(std::int64_t number) const {
    return work_.selection.Contains(number) && !work_.sink.Has(number);
  }

  /// False when nothing is written any more.
  bool PassOn(SourcePacket packet) {
    const AVStream& stream = *work_.source.Input()->container->streams[packet->stream_index];
    return !work_.times.Move(*packet, stream.time_base) || outputs_.Push(std::move(packet));
  }

  /// False when stopped.
  bool Map() {
    while (auto next = pictures_.Pop()) {
      if (work_.isStopped()) return false;
      // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the loop checks it
      if (!MapPicture(std::move(*next))) break;
    }
    return !work_.isStopped();
  }

  /// False when nothing is written any more.
  bool MapPicture(ClipPicture source) {
    MappedPicture picture = work_.sink.NewPicture();
    work_.map(source, picture.frame);
    picture.number = source.number;
    picture.pts = work_.times.Moved(source.number, source.pts);
    return outputs_.Push(Mapped{std::move(picture), std::move(source)});
  }

  void Write() {
    while (auto next = outputs_.Pop()) {
      // NOLINTNEXTLINE(bugprone-unchecked-optional-access): the loop checks it
      WriteOutput(std::move(*next));
      if (work_.stopsAtRefused && work_.sink.Refused().places > 0) return Cancel();
    }
  }

  void WriteOutput(Output output) {
    if (auto* mapped = std::get_if<Mapped>(&output)) {
      work_.sink.Write(std::move(mapped->picture), mapped->source);
    } else {
      work_.sink.PassOn(*std::get<SourcePacket>(output));
    }
  }

  const PipelineWork& work_;
  BoundedQueue<ClipPicture> pictures_{kPicturesAhead};
  BoundedQueue<Output> outputs_{kOutputsAhead};
  std::mutex mutex_;
  std::exception_ptr error_;
};

}  // namespace

bool RunPipeline(const PipelineWork& work) { return Pipeline(work).Run(); }

}  // namespace Quillon::Cli
