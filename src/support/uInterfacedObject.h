// The reference-counted base of the objects that implement interfaces.
#pragma once

#include <atomic>

#include "intf/intf_Base.h"

namespace varcolin {

/// Implements the base operations for an object that serves the interfaces IFirst and IOthers. It starts with no
/// reference and is destroyed with its last one. Create objects with MakeObject.
template <class IFirst, class... IOthers>
class TInterfacedObject : public IFirst, public IOthers... {
 public:
  TInterfacedObject() = default;
  TInterfacedObject(const TInterfacedObject&) = delete;
  TInterfacedObject& operator=(const TInterfacedObject&) = delete;
  virtual ~TInterfacedObject() = default;

  TResultCode VARCOLIN_CALL QueryInterface(const TGUID& AIID, void** AObject) override {
    if (AObject == nullptr) return ResultInvalidPointer;
    *AObject = nullptr;
    if (AIID == IInterface::IID || AIID == IFirst::IID) *AObject = static_cast<IFirst*>(this);
    ((AIID == IOthers::IID ? void(*AObject = static_cast<IOthers*>(this)) : void()), ...);
    if (*AObject == nullptr) return ResultNoInterface;
    AddRef();
    return ResultOk;
  }
  std::uint32_t VARCOLIN_CALL AddRef() override { return ++FRefCount; }
  std::uint32_t VARCOLIN_CALL Release() override {
    const std::uint32_t left = --FRefCount;
    if (left == 0) delete this;
    return left;
  }

 private:
  std::atomic<std::uint32_t> FRefCount{0};
};

/// A new object with one reference, seen as its interface I (the class itself when I is left out).
template <class TObject, class I = TObject, class... TArgs>
[[nodiscard]] TInterfaceRef<I> MakeObject(TArgs&&... AArgs) {
  return TInterfaceRef<I>(new TObject(std::forward<TArgs>(AArgs)...));
}

}  // namespace varcolin
