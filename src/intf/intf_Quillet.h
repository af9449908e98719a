// The interface of the suite's "QuilletHelper.dll": the process list.
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// Sent to the library's GetInstance in place of a GUID to make it give back everything that it holds.
inline constexpr std::u16string_view QuilletFinalizeCommand = u"FinallizeLib";

/// One process of a snapshot.
struct IQuilletProcess : IInterface {
  static constexpr TGUID IID{0xCDCFC755, 0xA3C6, 0x4E67, {0x8E, 0xB8, 0x25, 0xEB, 0x9A, 0x51, 0xE8, 0x5E}};

  /// 1: path of the process's executable; empty when it cannot be read.
  virtual void VARCOLIN_CALL GetPath(TOleString* AResult) = 0;
  /// 2: id of the process.
  virtual std::uint32_t VARCOLIN_CALL GetProcessID() = 0;

 protected:
  ~IQuilletProcess() = default;
};

/// A snapshot of the running processes.
struct IQuilletProcessList : IInterface {
  static constexpr TGUID IID{0xCDCFC755, 0xA3C6, 0x4E67, {0x8E, 0xB8, 0x25, 0xEB, 0x9A, 0x51, 0xE8, 0x5D}};

  /// 1: takes the snapshot anew.
  virtual void VARCOLIN_CALL RefreshList() = 0;
  /// 2, 3: bracket a reading of the snapshot (re-entrant).
  virtual void VARCOLIN_CALL Lock() = 0;
  virtual void VARCOLIN_CALL Unlock() = 0;
  /// 4: number of processes in the snapshot.
  virtual std::int32_t VARCOLIN_CALL GetCount() = 0;
  /// 5: writes process AIndex with a reference of the caller's own; null when the index is out of range.
  virtual void VARCOLIN_CALL GetItem(std::int32_t AIndex, IQuilletProcess** AResult) = 0;

 protected:
  ~IQuilletProcessList() = default;
};

}  // namespace varcolin
