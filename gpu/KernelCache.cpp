#include "gpu/KernelCache.h"

#include <algorithm>

#include "gpu/Kernels.h"

namespace Quillon {

namespace {

constinit std::array<KernelCache, kKernels.size()> caches{};

/// The engine's kernels alone are asked for.
KernelCache& CacheOf(const KernelSignature& kernel) {
  const auto* found = std::find_if(kKernels.begin(), kKernels.end(),
                                   [&](const auto* known) { return known->name == kernel.name; });
  return caches.at(static_cast<std::size_t>(found - kKernels.begin()));
}

bool IsBelow(std::int32_t index, std::size_t count) {
  return index >= 0 && static_cast<std::size_t>(index) < count;
}

}  // namespace

KernelCache::Cell::~Cell() {
  const Entry* entry = entries_.load();
  while (entry != nullptr) {
    const std::unique_ptr<const Entry> owned(entry);
    entry = owned->older;
  }
}

void KernelCache::Cell::Publish(std::uint64_t contextIdentity, IL::KernelHandle kernel) {
  current_.store(FindOrAdd(contextIdentity, kernel), std::memory_order_release);
}

// Found again, an entry serves again: a host that changes between two contexts makes two.
const KernelCache::Entry* KernelCache::Cell::FindOrAdd(std::uint64_t contextIdentity,
                                                       IL::KernelHandle kernel) {
  const Entry* newest = entries_.load(std::memory_order_acquire);
  for (const Entry* entry = newest; entry != nullptr; entry = entry->older) {
    if (entry->contextIdentity == contextIdentity && entry->kernel == kernel) return entry;
  }
  auto entry = std::make_unique<Entry>(Entry{contextIdentity, kernel, newest});
  while (!entries_.compare_exchange_weak(entry->older, entry.get(), std::memory_order_acq_rel)) {
  }
  return entry.release();
}

IL::KernelHandle KernelCache::Get(std::string_view kernel,
                                  const std::shared_ptr<IL::Device>& device,
                                  const IL::DeviceDescription& description) {
  if (!IsBelow(description.platformKind, kPlatformKinds) ||
      !IsBelow(description.ordinal, kOrdinals)) {
    return IL::LoadKernel(device, kKernelModule, kernel);
  }
  Cell& cell = cells_[static_cast<std::size_t>(description.platformKind)]
                     [static_cast<std::size_t>(description.ordinal)];
  const Entry* current = cell.Current();
  if (current != nullptr && current->contextIdentity == description.contextIdentity) {
    return current->kernel;
  }
  IL::KernelHandle loaded = IL::LoadKernel(device, kKernelModule, kernel);
  cell.Publish(description.contextIdentity, loaded);
  return loaded;
}

IL::KernelHandle GetKernel(const KernelSignature& kernel, const std::shared_ptr<IL::Device>& device,
                           const IL::DeviceDescription& description) {
  return CacheOf(kernel).Get(kernel.name, device, description);
}

}  // namespace Quillon
