#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <typeinfo>
#include <utility>

#include "host/orvcore/Config.h"
#include "host/orvcore/Debug.h"
#include "host/orvcore/Utility.h"

namespace orvcore::classref {

/// The part of every shared object that the framework itself calls. The query is the object's
/// first virtual operation.
struct IObject {
  /// The object's view under the qualified interface name, or null. May throw, as every operation
  /// of a host that is not marked noexcept.
  virtual void* QueryInterface(std::string_view qualifiedName) = 0;

 protected:
  ~IObject() = default;
};

/// Shared counts of one object. All strong references together hold one weak reference.
struct ControlBlock {
  virtual void DisposeObject() noexcept = 0;
  virtual void DestroyBlock() noexcept = 0;

  std::atomic<std::int32_t> strong{1};
  std::atomic<std::int32_t> weak{1};

 protected:
  ~ControlBlock() = default;
};

/// Handle that shares ownership of an object and shows it as interface `T`. Copies may be made
/// and released on any thread; one handle is not to be changed from two threads at once.
template <class T>
class InterfaceRef {
 public:
  InterfaceRef() noexcept = default;

  /// Takes over one strong reference.
  InterfaceRef(T* interfacePointer, IObject* object, ControlBlock* control) noexcept
      : interface_(interfacePointer), object_(object), control_(control) {}

  InterfaceRef(const InterfaceRef& other) noexcept
      : interface_(other.interface_), object_(other.object_), control_(other.control_) {
    if (control_ != nullptr) control_->strong.fetch_add(1, std::memory_order_relaxed);
  }

  InterfaceRef(InterfaceRef&& other) noexcept
      : interface_(std::exchange(other.interface_, nullptr)),
        object_(std::exchange(other.object_, nullptr)),
        control_(std::exchange(other.control_, nullptr)) {}

  InterfaceRef& operator=(InterfaceRef other) noexcept {
    std::swap(interface_, other.interface_);
    std::swap(object_, other.object_);
    std::swap(control_, other.control_);
    return *this;
  }

  ~InterfaceRef() { Release(); }

  /// Both the interface and the object are there.
  bool IsUsable() const noexcept { return interface_ != nullptr && object_ != nullptr; }

  T* operator->() const { return &**this; }

  T& operator*() const {
    if (!IsUsable()) config::DoThrowNullPtrException(debug::GetTypeName(typeid(T)));
    return *interface_;
  }

  /// The object itself: equal for two handles exactly when they refer to one object.
  IObject* Object() const noexcept { return object_; }

 private:
  template <class U, class V>
  friend InterfaceRef<U> InterfaceCast(InterfaceRef<V> ref);

  void Release() noexcept {
    if (control_ == nullptr) return;
    if (control_->strong.fetch_sub(1, std::memory_order_acq_rel) != 1) return;
    control_->DisposeObject();
    if (control_->weak.fetch_sub(1, std::memory_order_acq_rel) == 1) control_->DestroyBlock();
  }

  T* interface_ = nullptr;
  IObject* object_ = nullptr;
  ControlBlock* control_ = nullptr;
};

static_assert(sizeof(InterfaceRef<int>) == 3 * sizeof(void*));

/// The same object under another interface. Consumes the handle: its reference passes to the
/// result, or is released when the object has no such interface (the result is then empty) or its
/// query throws.
template <class U, class V>
InterfaceRef<U> InterfaceCast(InterfaceRef<V> ref) {
  if (ref.object_ == nullptr) return {};
  auto* view = static_cast<U*>(ref.object_->QueryInterface(utility::QualifiedName<U>()));
  if (view == nullptr) return {};
  ref.interface_ = nullptr;
  return InterfaceRef<U>(view, std::exchange(ref.object_, nullptr),
                         std::exchange(ref.control_, nullptr));
}

}  // namespace orvcore::classref
