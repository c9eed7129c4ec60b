#pragma once

#include <array>
#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/ironlane/Device.h"
#include "host/pavix/GamutMappingUtils.h"
#include "host/pavix/IVideoFrame.h"

namespace scripted {

/// What the scripted host throws where a test asks for an exception.
struct HostException : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// What dereferencing an unusable handle throws.
struct NullHandleException : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// How an operation is to end: as scripted by `Results`, with a code, or with null, empty or no
/// effect at all. (An exception has been thrown by then.)
struct Outcome {
  enum class Kind { Normal, Code, Nothing } kind = Kind::Normal;
  int code = 0;
  bool IsNormal() const { return kind == Kind::Normal; }
};

/// One `CHR::ConvertFrame`.
struct Conversion {
  const float* source;
  float* destination;
  int width;
  int height;
  const orvmediatypes::color::ColorSpace& from;
  const orvmediatypes::color::ColorSpace& to;
  const orvmediatypes::color::ColorManagementSettings& settings;
};

/// One message that reached `orvcore::debug::Trace`.
struct Message {
  int level;
  std::string category;
  std::string text;
  friend bool operator==(const Message&, const Message&) = default;
};

/// How a sub-executor runs its tasks: inline, when they are waited for.
enum class TaskOrder { AsQueued, Reversed };

/// The handle of a kernel, by which device calls name it.
IL::KernelHandle HandleOfKernel(std::string_view kernel);

/// What the operations answer and do when they do not fail. What is not listed here follows from
/// the colour spaces: their kind from the H.273 transfer (16 and 18 are HDR, 8 is neither, others
/// are SDR), their metadata peak from `peakLuminance`, equivalence from the code points.
struct Results {
  /// Called at every operation, before it is recorded.
  std::function<void(const std::string& operation)> onCall = [](const std::string&) {};

  bool gamutMappingApplicable = true;
  bool gamutCompressionApplicable = false;
  bool toneMappingApplicable = false;
  /// Called with the settings that the question of tone mapping is asked about.
  std::function<void(const PX::ToneMappingUtils::ToneMapSettings&)> seeToneMapSettings =
      [](const auto&) {};

  /// Writes what a conversion or a copy yields. By default nothing is written.
  std::function<void(const Conversion&)> convertFrame = [](const Conversion&) {};
  std::function<void(const PX::VideoFrameRef& from, const PX::VideoFrameRef& to)> copyFrame =
      [](const PX::VideoFrameRef&, const PX::VideoFrameRef&) {};
  std::function<float(const orvmediatypes::color::ColorSpace&, float signal)>
      convertSignalToLinear =
          [](const orvmediatypes::color::ColorSpace&, float signal) { return signal; };
  std::array<float, 3> luminanceCoefficients = {0.25F, 0.5F, 0.125F};

  float peakNits = 1000.0F;
  std::function<int(int)> adjustVersion = [](int version) { return version; };
  std::function<void(float peak, orvmediatypes::color::ToneMapAlgorithmType&, float& knee)>
      automaticChoice = [](float, orvmediatypes::color::ToneMapAlgorithmType& algorithm, float&) {
        algorithm = orvmediatypes::color::ToneMapAlgorithmType::HuePreservationDesaturation;
      };
  bool newColorManagement = true;
  int peakLuminance = -1;

  /// What loading a kernel yields.
  std::function<IL::KernelHandle(const std::shared_ptr<IL::Device>&, std::string_view kernel)>
      loadKernel = [](const auto&, std::string_view kernel) { return HandleOfKernel(kernel); };

  bool hasSubExecutor = true;
  TaskOrder taskOrder = TaskOrder::AsQueued;
  /// Where there is one, takes every task over in place of the sub-executor.
  std::function<void(std::function<void()>)> takeTask{};
  /// Called when a sub-executor is asked for, before it is made.
  std::function<void()> beforeSubExecutor = [] {};
  /// Called with the place in the queue of a task that is about to run, or has just run.
  std::function<void(int)> beforeTask = [](int) {};
  std::function<void(int)> afterTask = [](int) {};

  bool traceEnabled = true;
  std::int32_t traceChangeCount = 1;
};

/// The scripted host: records every host operation with its arguments, in order, and fails those
/// that a test names. An operation's name is what stands before the bracket of its line:
/// "CHR::ConvertFrame", "source.GetBounds"; interface queries carry the interface in the name:
/// "source.QueryInterface(KS::IGPUVideoFrame)". Allocations are not recorded (see `Recycler`).
class Host {
 public:
  static Host& Instance();

  /// Forgets calls, messages and failures, and restores the default results.
  void Reset();

  Results results;
  /// The record that a test hands to the engine: lines call it "record", any other "copy".
  const PX::GamutMappingUtils::GamutMappingSettings* record = nullptr;

  /// The n-th call from now on of the operation returns the code and does nothing else.
  void FailWithCode(std::string operation, int code, int nth = 1);
  /// The n-th call from now on returns null, empty, false, 0, or leaves its result alone.
  void FailWithNothing(std::string operation, int nth = 1);
  /// The n-th call from now on throws a `HostException`, or what is named.
  void FailWithException(std::string operation, int nth = 1, std::exception_ptr exception = {});

  const std::vector<std::string>& Calls() const { return calls_; }
  /// The calls whose lines begin with one of these.
  std::vector<std::string> CallsTo(std::initializer_list<std::string_view> prefixes) const;
  /// Names of all operations called, in order.
  const std::vector<std::string>& Operations() const { return operations_; }
  const std::vector<Message>& Messages() const { return messages_; }
  /// The calls made before the first reset: those of the engine's static initialisation.
  const std::vector<std::string>& StartupCalls() const { return startupCalls_; }

  /// Records a call and says how it is to end. For the bodies of the operations.
  Outcome Enter(const std::string& operation, const std::string& arguments);
  void Deliver(Message message);

 private:
  struct Failure {
    enum class Kind { Code, Nothing, Exception } kind;
    int code;
    int callsLeft;
    std::exception_ptr exception{};
  };
  void Plan(std::string operation, Failure failure);

  std::mutex mutex_;
  std::vector<std::string> calls_;
  std::vector<std::string> operations_;
  std::vector<Message> messages_;
  std::vector<std::string> startupCalls_;
  bool started_ = false;
  std::multimap<std::string, Failure> failures_;
};

}  // namespace scripted
