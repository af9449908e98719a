// "QuilletHelper.dll": the process list.
#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

#include "intf/intf_Quillet.h"
#include "platform/Processes.h"
#include "siblings/SiblingLibrary.h"
#include "support/uInterfacedObject.h"
#include "support/uText.h"

namespace varcolin {
namespace {

class TQuilletProcess final : public TInterfacedObject<IQuilletProcess> {
 public:
  TQuilletProcess(std::uint32_t AId, std::u16string APath) : FId(AId), FPath(std::move(APath)) {}

  void VARCOLIN_CALL GetPath(TOleString* AResult) override {
    ReturnText(AResult, [&] { return std::u16string_view(FPath); });
  }
  std::uint32_t VARCOLIN_CALL GetProcessID() override { return FId; }

 private:
  std::uint32_t FId;
  std::u16string FPath;
};

/// Empty until its first RefreshList. A refresh that fails keeps the snapshot before it.
class TQuilletProcessList final : public TInterfacedObject<IQuilletProcessList> {
 public:
  explicit TQuilletProcessList(IProcesses& AProcesses) : FProcesses(AProcesses) {}

  void VARCOLIN_CALL RefreshList() override {
    GuardedCall([&] {
      std::vector<TProcessEntry> entries;
      if (FProcesses.EnumProcesses(entries) != WinError::Success) return;
      std::vector<TInterfaceRef<IQuilletProcess>> items;
      items.reserve(entries.size());
      for (const TProcessEntry& entry : entries) {
        std::u16string path;
        (void)FProcesses.GetProcessPath(entry.Id, path);
        items.push_back(MakeObject<TQuilletProcess, IQuilletProcess>(entry.Id, std::move(path)));
      }
      Replace(std::move(items));
    });
  }

  void VARCOLIN_CALL Lock() override {
    GuardedCall([&] {
      FLock.lock();
      FOwner = std::this_thread::get_id();
      ++FDepth;
    });
  }

  /// Passed over on a thread that does not hold the lock.
  void VARCOLIN_CALL Unlock() override {
    if (FOwner != std::this_thread::get_id()) return;
    if (--FDepth == 0) FOwner = std::thread::id();
    FLock.unlock();
  }

  std::int32_t VARCOLIN_CALL GetCount() override {
    return Guarded<std::int32_t>(0, [&] {
      const std::lock_guard lock(FLock);
      return static_cast<std::int32_t>(FItems.size());
    });
  }

  void VARCOLIN_CALL GetItem(std::int32_t AIndex, IQuilletProcess** AResult) override {
    if (AResult == nullptr) return;
    *AResult = nullptr;
    GuardedCall([&] {
      const std::lock_guard lock(FLock);
      if (AIndex >= 0 && static_cast<std::size_t>(AIndex) < FItems.size()) {
        *AResult = TInterfaceRef(FItems[static_cast<std::size_t>(AIndex)]).Detach();
      }
    });
  }

  void Replace(std::vector<TInterfaceRef<IQuilletProcess>> AItems) {
    const std::lock_guard lock(FLock);
    FItems.swap(AItems);
  }

 private:
  IProcesses& FProcesses;
  std::recursive_mutex FLock;
  std::atomic<std::thread::id> FOwner;  ///< who holds FLock through Lock
  std::uint32_t FDepth = 0;
  std::vector<TInterfaceRef<IQuilletProcess>> FItems;
};

class TQuilletLibrary final : public TSiblingLibrary {
 public:
  explicit TQuilletLibrary(const TMachine& AMachine) : FList(MakeObject<TQuilletProcessList>(AMachine.Processes)) {}

  /// The command to finalise gives the snapshot back. The list itself stays, so that an interface that a client took
  /// without a reference of its own does not dangle.
  void* FindInterface(std::u16string_view ARequest) override {
    if (SameText(ARequest, QuilletFinalizeCommand)) FList->Replace({});
    return IsRequestFor(ARequest, IQuilletProcessList::IID) ? static_cast<IQuilletProcessList*>(FList.Get()) : nullptr;
  }

 private:
  TInterfaceRef<TQuilletProcessList> FList;
};

}  // namespace

std::unique_ptr<TSiblingLibrary> MakeQuilletLibrary(const TMachine& AMachine) {
  return std::make_unique<TQuilletLibrary>(AMachine);
}

}  // namespace varcolin
