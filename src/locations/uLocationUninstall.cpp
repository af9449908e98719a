#include "locations/uLocationUninstall.h"

#include <algorithm>
#include <atomic>
#include <mutex>

#include "platform/Com.h"
#include "platform/Sync.h"
#include "products/uItemProgram.h"
#include "products/uItemUpdate.h"
#include "products/uThreadExceptionHandler.h"
#include "registry/uKeyCache.h"
#include "services/uStatisticsLog.h"
#include "support/uExceptions.h"
#include "support/uThread.h"

namespace varcolin {

namespace {

/// Time between two looks for changes, and between a change and the reading that it causes.
constexpr std::uint32_t WatchInterval = 1000;

}  // namespace

struct TLocationUninstall::TState {
  TState(IRegistry& ARegistry, ISync& ASync, ICom& ACom) : Registry(ARegistry), Sync(ASync), Com(ACom) {
    if (const TWinError code = Sync.MakeEvent(false, WakeEvent); code != WinError::Success) throw EOSError(code, u"");
  }

  IRegistry& Registry;
  ISync& Sync;
  ICom& Com;
  TEvent WakeEvent;
  std::atomic<TVRCState> LoadingState{TVRCState::vrcsListLoading};
  std::vector<TFactory> Factories;
  std::mutex CreationLock;
  std::atomic<bool> Created{false};
  std::vector<std::unique_ptr<TLocationUninstall>> Locations;
  TKeyCache* ReadBefore = nullptr;  ///< the reader's own
  std::atomic<bool> Reading{false};
  /// Set before the reader starts and cleared after it has ended, so the reader itself reads it without a lock.
  std::unique_ptr<TThread> Reader;
};

std::unique_ptr<TLocationUninstall::TState> TLocationUninstall::FState;

void TLocationUninstall::Load(IRegistry& ARegistry, ISync& ASync, ICom& ACom) {
  FState = std::make_unique<TState>(ARegistry, ASync, ACom);
}

void TLocationUninstall::Unload() noexcept {
  if (FState) Cancel();
  FState.reset();
}

ISync& TLocationUninstall::Sync() noexcept { return FState->Sync; }

void TLocationUninstall::RegisterClass(TFactory AFactory) { FState->Factories.push_back(std::move(AFactory)); }

const std::vector<std::unique_ptr<TLocationUninstall>>& TLocationUninstall::Locations() {
  TState& state = *FState;
  if (!state.Created) {
    const std::lock_guard lock(state.CreationLock);
    if (!state.Created) {
      std::vector<std::unique_ptr<TLocationUninstall>> created;
      for (const TFactory& factory : state.Factories) created.push_back(factory());
      state.Locations = std::move(created);
      state.Created = true;
    }
  }
  return state.Locations;
}

TLocationUninstall* TLocationUninstall::Location(TTypeUninstallLocation AIndex) {
  for (const auto& location : Locations()) {
    if (location->FTypeLocation == AIndex) return location.get();
  }
  return nullptr;
}

TKeyCache* TLocationUninstall::ReadBefore() noexcept { return FState->ReadBefore; }

TVRCState TLocationUninstall::State() noexcept { return FState->LoadingState; }

bool TLocationUninstall::IsReading() noexcept { return FState->Reading; }

void TLocationUninstall::Refresh() {
  Cancel();
  TState& state = *FState;
  state.Sync.ResetSignal(state.WakeEvent);
  state.LoadingState.exchange(TVRCState::vrcsListLoading);
  state.Reader = std::make_unique<TThread>([](const TThread& AThread) {
    RunReader(AThread);
    FState->Reading = false;
  });
  state.Reading = true;
  try {
    state.Reader->Start();
  } catch (...) {
    state.Reading = false;
    state.Reader.reset();
    throw;
  }
}

void TLocationUninstall::Cancel() {
  TState& state = *FState;
  if (!state.Reader) return;
  state.Reader->Terminate();
  state.Sync.SignalEvent(state.WakeEvent);
  state.Reader->WaitFor();
  state.Reader.reset();
}

void TLocationUninstall::CheckTerminated() {
  if (FState->Reader && FState->Reader->Terminated()) throw EAbort();
}

void TLocationUninstall::RunReader(const TThread& AThread) {
  const TComScope com(FState->Com, ECom::Apartment);
  try {
    StartLogAndReadLists();
    FState->LoadingState.exchange(TVRCState::vrcsInfoLoading);
    while (!AThread.Terminated()) {
      ReadDetails();
      FState->LoadingState.exchange(TVRCState::vrcsLoaded);
      CheckTerminated();
      StatisticsLog::Write();
      if (!AThread.Terminated()) WaitForChanges();
    }
  } catch (const EAbort&) {
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
  try {
    StatisticsLog::Write();
  } catch (const std::exception&) {
    // the log itself cannot be written: there is nowhere left to say so
  }
}

void TLocationUninstall::StartLogAndReadLists() {
  try {
    // arms their watches: what the log's header reads of the registry is what the lists read, unless a watch says no
    static_cast<void>(Locations());
  } catch (const std::exception&) {
    StatisticsLog::Reset();
    throw;
  }
  TKeyCache keys(FState->Registry);
  StatisticsLog::Reset(keys);
  struct TScope {
    explicit TScope(TKeyCache& AKeys) { FState->ReadBefore = &AKeys; }
    ~TScope() { FState->ReadBefore = nullptr; }
  } const scope(keys);
  ReadLists();
}

void TLocationUninstall::ReadLists() {
  CheckTerminated();
  for (const auto kind : {TTypeUninstallLocation::ulRegistryUninstall, TTypeUninstallLocation::ulVistaUpdate}) {
    if (TLocationUninstall* const location = Location(kind)) location->ReadLocation();
  }
  CheckTerminated();
}

void TLocationUninstall::ReadDetails() {
  try {
    const auto programs = TItemProgram::List().Snapshot();
    const auto isDue = [](const auto& AItem) { return AItem->FIsNeedReadSlowInfo; };
    if (std::any_of(programs.begin(), programs.end(), isDue)) {
      if (TLocationUninstall* const location = Location(TTypeUninstallLocation::ulExeInfo)) location->ReadLocation();
    }
    for (const auto& program : programs) {
      CheckTerminated();
      program->ReadSlowInfo();
    }
    for (const auto& update : TItemUpdate::List().Snapshot()) {
      CheckTerminated();
      update->ReadSlowInfo();
    }
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    TThreadExceptionHandler::Show();
    StatisticsLog::AddErrorLn();
  }
}

void TLocationUninstall::WaitForChanges() {
  TState& state = *FState;
  state.Sync.ResetSignal(state.WakeEvent);
  for (;;) {
    // a request to end that came before the reset must not cost a second
    CheckTerminated();
    for (const auto& location : Locations()) {
      if (!location->CheckChanges()) continue;
      StatisticsLog::Add(u"");
      StatisticsLog::Add(u"Detect changes in location \"%s\".", {TextOf(location->FTypeLocation)});
      StatisticsLog::Write();
      // what changes once mostly goes on changing: read when it has settled, unless the reader is to end
      if (state.Sync.WaitForEvent(state.WakeEvent, WatchInterval) == EWaitResult::TimedOut) location->ReadLocation();
      return;
    }
    switch (state.Sync.WaitForEvent(state.WakeEvent, WatchInterval)) {
      case EWaitResult::Signaled:
        return;
      case EWaitResult::TimedOut:
        break;
      case EWaitResult::Failed:
        state.Sync.SleepFor(WatchInterval);
        break;
    }
  }
}

}  // namespace varcolin
