// What every decorator of the platform seam is made of: facilities that forward each call, and a gate that each call
// passes first.
#pragma once

#include <string_view>

#include "platform/Types.h"

namespace varcolin {

/// A call that is about to reach a facility.
struct TCall {
  std::string_view Facility;    ///< "Registry", "Files", …
  std::string_view Method;      ///< name of the method
  std::u16string_view Subject;  ///< the path or name that the call is about; may be empty
  bool Writes = false;          ///< whether it changes the machine
  bool CanFail = true;          ///< whether it has an error code to give
};

/// Decides about calls. Any thread.
class ICallGate {
 public:
  virtual ~ICallGate() = default;

  /// Success lets the call pass; any other code becomes its result, and the facility is not reached. The answer is
  /// ignored for a call that cannot fail.
  [[nodiscard]] virtual TWinError Admit(const TCall& ACall) = 0;
};

/// Lets every call pass.
class TOpenGate final : public ICallGate {
 public:
  [[nodiscard]] TWinError Admit(const TCall&) override { return WinError::Success; }
};

/// The gate of forwarding facilities that are given none.
inline TOpenGate OpenGate;

/// The base of forwarding facilities. The inner facility and the gate outlive it. Handles that the inner facility
/// gives out go back to it directly, so they may outlive this object and be used with either.
template <class TFacility>
class TForwarding : public TFacility {
 public:
  TForwarding(TFacility& AInner, ICallGate& AGate, std::string_view AName)
      : FInner(AInner), FGate(AGate), FName(AName) {}
  TForwarding(const TForwarding&) = delete;
  TForwarding& operator=(const TForwarding&) = delete;

 protected:
  [[nodiscard]] TFacility& Inner() const noexcept { return FInner; }

  /// Makes a call that only looks when the gate admits it.
  template <class TForward>
  [[nodiscard]] TWinError Look(std::string_view AMethod, std::u16string_view ASubject, TForward AForward) {
    const TWinError refusal = FGate.Admit({FName, AMethod, ASubject, false, true});
    return refusal == WinError::Success ? AForward() : refusal;
  }
  /// Makes a call that changes the machine when the gate admits it.
  template <class TForward>
  [[nodiscard]] TWinError Change(std::string_view AMethod, std::u16string_view ASubject, TForward AForward) {
    const TWinError refusal = FGate.Admit({FName, AMethod, ASubject, true, true});
    return refusal == WinError::Success ? AForward() : refusal;
  }
  /// Shows the gate a call that cannot fail.
  void Show(std::string_view AMethod) { (void)FGate.Admit({FName, AMethod, {}, false, false}); }

 private:
  TFacility& FInner;
  ICallGate& FGate;
  std::string_view FName;
};

}  // namespace varcolin
