#pragma once

#include <memory>
#include <optional>
#include <utility>

#include "host/orvcore/InterfaceRef.h"

namespace RefHost {

/// Object and counts in one allocation.
template <class Object>
class SharedObject final : public orvcore::classref::ControlBlock {
 public:
  template <class... Arguments>
  explicit SharedObject(Arguments&&... arguments) {
    object_.emplace(std::forward<Arguments>(arguments)...);
  }

  /// Null once disposed of.
  Object* Get() { return object_.has_value() ? &*object_ : nullptr; }
  void DisposeObject() noexcept override { object_.reset(); }
  void DestroyBlock() noexcept override { const std::unique_ptr<SharedObject> self(this); }

 private:
  std::optional<Object> object_;
};

/// A new object, held by the handle alone.
template <class Interface, class Object, class... Arguments>
orvcore::classref::InterfaceRef<Interface> MakeShared(Arguments&&... arguments) {
  auto block = std::make_unique<SharedObject<Object>>(std::forward<Arguments>(arguments)...);
  Object* object = block->Get();
  return orvcore::classref::InterfaceRef<Interface>(object, object, block.release());
}

}  // namespace RefHost
