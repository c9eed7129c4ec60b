#include "tests/refhost/ironlane/cuda/CudaTest.h"

#include <array>
#include <iterator>
#include <utility>

#include "host/os/DynamicLibrary.h"
#include "refhost/ResultCodes.h"
#include "refhost/orvcore/TraceSettings.h"
#include "tests/refhost/ironlane/CacheHome.h"

namespace fs = std::filesystem;
using ::testing::IsEmpty;

namespace {

template <class Function>
Function* FindInDriver(const char* name) {
  const HMODULE library = LoadLibraryW(L"nvcuda.dll");
  if (library == nullptr) return nullptr;
  using AnyFunction = void (*)();
  return reinterpret_cast<Function*>(reinterpret_cast<AnyFunction>(GetProcAddress(library, name)));
}

}  // namespace

scripted::Driver* FindScriptedDriver() {
  auto* function = FindInDriver<scripted::Driver*()>("TheScriptedDriver");
  return function == nullptr ? nullptr : function();
}

void ForgetScriptedDriver() { FindInDriver<void()>("ResetScriptedDriver")(); }

CudaTest::CudaTest() {
  fs::remove_all(cache_);
  SetCacheHome(cache_);
  RefHost::SetTraceLevel(7);
  RefHost::SetTraceSink([this](int, std::string_view, std::string_view text) {
    const std::lock_guard lock(mutex_);
    trace_ += text;
  });
  if (driver_ != nullptr) ForgetScriptedDriver();
}

CudaTest::~CudaTest() {
  RefHost::SetTraceSink({});
  RefHost::SetTraceLevel(0);
  fs::remove_all(cache_);
}

void CudaTest::SetUp() { ASSERT_NE(driver_, nullptr) << "the driver is not the scripted one"; }

void CudaTest::TearDown() {
  if (driver_ == nullptr) return;
  EXPECT_THAT(driver_->refusals, IsEmpty());
  EXPECT_EQ(driver_->pageable, 0) << "copies that the processor has to wait for";
}

void CudaTest::ExpectNothingHeld() const {
  EXPECT_EQ(driver_->contexts, 0);
  EXPECT_EQ(driver_->streams, 0);
  EXPECT_EQ(driver_->events, 0);
  EXPECT_EQ(driver_->modules, 0);
  EXPECT_EQ(driver_->links, 0);
  EXPECT_EQ(driver_->pinned, 0);
  EXPECT_EQ(driver_->current, 0);
  EXPECT_THAT(driver_->memory, IsEmpty());
}

std::string CudaTest::Trace() {
  const std::lock_guard lock(mutex_);
  return std::exchange(trace_, {});
}

std::ptrdiff_t CudaTest::KeptBinaries() const {
  const fs::path folder = cache_ / "quillon" / "kernels";
  return fs::exists(folder) ? std::distance(fs::directory_iterator(folder), {}) : 0;
}

int LaunchOn(RefHost::GPUDevice& device, std::uint64_t memory) {
  const auto kernel = device.LoadKernel("ToneMapMain", "GamutCompressionKernelReinhard");
  if (kernel == nullptr) return device.IsLost() ? RefHost::kDeviceLost : RefHost::kDeviceFailed;
  orvcore::classref::InterfaceRef<IL::IArgumentSet> arguments;
  if (const int code = device.CreateArguments(kernel, 20, arguments); code < 0) return code;
  const Quillon::GPUFrameDescriptor frame = {.devicePointer = memory,
                                             .width = 4,
                                             .height = 16,
                                             .rowPitchPixels = 4,
                                             .formatFlag = 1,
                                             .reserved = 0,
                                             .padding = 0};
  const std::uint64_t none = 0;
  const std::uint32_t number = 7;
  const float limit = 1.5F;
  arguments->SetFrameArgument(&frame);
  arguments->SetValueArgument(&none, 8, 8);
  arguments->SetValueArgument(&number, 4, 4);
  arguments->SetValueArgument(&number, 4, 4);
  arguments->SetValueArgument(&none, 8, 8);
  arguments->SetValueArgument(&limit, 4, 4);
  if (const int code = arguments->Finalize(); code < 0) return code;
  return device.Launch(kernel, arguments, 3, 2, 16, 8, 0);
}

int UseDevice(RefHost::GPUDevice& device) {
  std::uint64_t memory = 0;
  std::uint64_t other = 0;
  std::vector<char> bytes(kBytes, 'x');
  int result = device.Allocate(kBytes, memory);
  if (result < 0) return result;
  const auto use = [&] {
    if (const int code = device.Allocate(kBytes, other); code < 0) return code;
    if (const int code = device.Upload(bytes.data(), memory, kBytes); code < 0) return code;
    if (const int code = device.Copy(memory, other, kBytes); code < 0) return code;
    if (const int code = LaunchOn(device, memory); code < 0) return code;
    if (const int code = device.Download(other, bytes.data(), kBytes); code < 0) return code;
    return device.Finish();
  };
  result = use();
  device.Free(memory);
  if (other != 0) device.Free(other);
  return result;
}
