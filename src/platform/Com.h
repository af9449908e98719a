// COM initialisation of a thread.
#pragma once

#include "platform/Types.h"

namespace varcolin {

/// How a thread joins COM.
enum class ECom { Apartment, Multithreaded };

class ICom {
 public:
  virtual ~ICom() = default;

  /// Joins the calling thread to COM; true when that succeeded and LeaveCom is due. False on a thread that has joined
  /// in the other way already. Windows: CoInitializeEx.
  [[nodiscard]] virtual bool JoinCom(ECom AKind) = 0;
  /// Ends what JoinCom began, on the same thread. Windows: CoUninitialize.
  virtual void LeaveCom() noexcept = 0;
};

/// Joins the thread to COM for a scope.
class TComScope {
 public:
  TComScope(ICom& ACom, ECom AKind) : FCom(ACom), FJoined(ACom.JoinCom(AKind)) {}
  TComScope(const TComScope&) = delete;
  TComScope& operator=(const TComScope&) = delete;
  ~TComScope() {
    if (FJoined) FCom.LeaveCom();
  }

 private:
  ICom& FCom;
  bool FJoined;
};

}  // namespace varcolin
