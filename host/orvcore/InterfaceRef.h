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

// Shared ownership across libraries. A host makes an object and its counts, together or apart, and
// gives them out in a handle with a view of the object:
//
//   interface   the object as `T`
//   object      the object as `IObject`
//   control     its counts
//
// The layout of a handle (three pointers), of the counts (two numbers of 32 bits behind the table
// of the block's operations), and the order of the virtual operations are fixed: hosts and engine
// need not be built at one time. Bodies stand here because there is but one way to count.
//
// An object whose counts are with it, in one allocation:
//
//   struct Block final : ControlBlock {
//     std::optional<Frame> frame{std::in_place};   // Frame is an IObject and a PX::IVideoFrame
//     void DisposeObject() noexcept override { frame.reset(); }
//     void DestroyBlock() noexcept override { const std::unique_ptr<Block> self(this); }
//   };
//   auto block = std::make_unique<Block>();
//   Frame* object = &*block->frame;
//   PX::VideoFrameRef frame(object, object, block.release());   // counts are 1 and 1
//
// Its life, once the last handle goes: the strong count falls to 0, `DisposeObject` runs, the weak
// count falls, and where it falls to 0 `DestroyBlock` runs. The engine makes no weak references; a
// host that does keeps the block, not the object, alive by them.

namespace orvcore::classref {

/// The part of every shared object that the framework itself calls. The query is the object's
/// first virtual operation.
struct IObject {
  /// The object's view under the qualified interface name, or null where it has none. The view
  /// belongs to the object and lives as long. The same name gives the same view always. Any thread.
  /// May throw, as every operation of a host that is not marked noexcept.
  ///
  /// The view stands in the same object: of a class that inherits several interfaces, it is the
  /// pointer that a static_cast to that interface gives, not that of the object.
  virtual void* QueryInterface(std::string_view qualifiedName) = 0;

 protected:
  ~IObject() = default;
};

/// Shared counts of one object. All strong references together hold one weak reference: counts
/// start at 1 and 1, which is the handle that the object is first given out in. What releases the
/// last of either calls the operation, on its own thread.
struct ControlBlock {
  /// Ends the object's life, when the last strong reference is gone. The block lives on. What it
  /// releases may release other objects in turn.
  virtual void DisposeObject() noexcept = 0;
  /// Ends the block's own life, when the last weak reference is gone too.
  virtual void DestroyBlock() noexcept = 0;

  /// Changed atomically by whoever copies or releases a handle.
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
  /// Empty: null, null, null.
  InterfaceRef() noexcept = default;

  /// Takes over one strong reference. Without a control block nothing is counted or released.
  InterfaceRef(T* interfacePointer, IObject* object, ControlBlock* control) noexcept
      : interface_(interfacePointer), object_(object), control_(control) {}

  /// One strong reference more.
  InterfaceRef(const InterfaceRef& other) noexcept
      : interface_(other.interface_), object_(other.object_), control_(other.control_) {
    if (control_ != nullptr) control_->strong.fetch_add(1, std::memory_order_relaxed);
  }

  /// The other's reference; the other is empty afterwards.
  InterfaceRef(InterfaceRef&& other) noexcept
      : interface_(std::exchange(other.interface_, nullptr)),
        object_(std::exchange(other.object_, nullptr)),
        control_(std::exchange(other.control_, nullptr)) {}

  /// Releases what the handle held, after it has taken the other's. Itself may be assigned.
  InterfaceRef& operator=(InterfaceRef other) noexcept {
    std::swap(interface_, other.interface_);
    std::swap(object_, other.object_);
    std::swap(control_, other.control_);
    return *this;
  }

  /// One strong reference less.
  ~InterfaceRef() { Release(); }

  /// Both the interface and the object are there. A handle with only one of them counts as empty.
  bool IsUsable() const noexcept { return interface_ != nullptr && object_ != nullptr; }

  /// The interface. Raises the null-handle exception, with the name of `T`, unless the handle is
  /// usable.
  T* operator->() const { return &**this; }

  T& operator*() const {
    if (!IsUsable()) config::DoThrowNullPtrException(debug::GetTypeName(typeid(T)));
    return *interface_;
  }

  /// The object itself, which stays the handle's: equal for two handles exactly when they refer to
  /// one object, whatever interfaces they show.
  IObject* Object() const noexcept { return object_; }

 private:
  template <class U, class V>
  friend InterfaceRef<U> InterfaceCast(InterfaceRef<V> ref);

  // Whoever brings a count to 0 sees all that others did with the object before.
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

// What the engine relies on.
static_assert(sizeof(InterfaceRef<int>) == 3 * sizeof(void*));

/// The same object under another interface. Consumes the handle: its reference passes to the
/// result, or is released when the object has no such interface (the result is then empty) or its
/// query throws. An empty handle gives an empty one, and nothing is asked.
///
/// The engine casts a copy each time that it wants to know what a frame has, and releases it at
/// once, so that one interface may be asked for several times a call.
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
