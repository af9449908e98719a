#include "host/Discovery.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <string>
#include <thread>

#include "host/HostError.h"
#include "host/Progress.h"
#include "host/Terminal.h"

namespace varcolin::host {

namespace {

/// Holds a collection's lock, so that discovery waits with its changes.
class TCollectionLock {
 public:
  explicit TCollectionLock(IProductCollection& ACollection) : FCollection(ACollection) { FCollection.Lock(); }
  TCollectionLock(const TCollectionLock&) = delete;
  TCollectionLock& operator=(const TCollectionLock&) = delete;
  ~TCollectionLock() { FCollection.Unlock(); }

 private:
  IProductCollection& FCollection;
};

}  // namespace

TDiscovery::TDiscovery(IVarcolin& AManager) : FManager(AManager) {
  FManager.QueryInterface(IBackgroundWork::IID, reinterpret_cast<void**>(FWork.Receive()));
  FManager.SetStrings(nullptr);
  FManager.Refresh();
  FManager.GetPrograms(FPrograms.Receive());
  FManager.GetUpdates(FUpdates.Receive());
}

template <class TFunction>
void TDiscovery::ForEach(IProductCollection& AProducts, TFunction AFunction) {
  const TCollectionLock lock(AProducts);
  const std::int32_t count = AProducts.GetCount();
  TInterfaceRef<IProduct> product;
  for (std::int32_t i = 0; i < count; ++i) {
    AProducts.GetItem(i, product.Receive());
    if (product) AFunction(*product);
  }
  product.Reset();
}

void TDiscovery::WaitUntilLoaded() {
  using TClock = std::chrono::steady_clock;
  constexpr std::chrono::milliseconds longestSleep(16);
  constexpr std::chrono::milliseconds progressPeriod(100);
  TProgress progress;
  std::chrono::milliseconds sleep(1);
  TClock::time_point nextProgress = TClock::now() + progressPeriod;
  std::size_t detailed = 0;
  // asked first, so that a state that is reached meanwhile counts
  for (bool works = true; FManager.GetState() != TVRCState::vrcsLoaded && !IsInterrupted();
       works = !FWork || FWork->IsDiscovering()) {
    if (!works) throw EHostError("the library gave up reading what is installed; its log says why (varcolin log)");
    std::this_thread::sleep_for(sleep);
    sleep = std::min(sleep * 2, longestSleep);
    if (!progress.IsWatched() || TClock::now() < nextProgress) continue;
    nextProgress = TClock::now() + progressPeriod;
    std::size_t count = 0;
    ForEach(*FPrograms, [&](IProduct& AProduct) {
      ++count;
      if (AProduct.IsChanged()) ++detailed;
    });
    progress.Show(FManager.GetState() == TVRCState::vrcsListLoading
                      ? "Reading the list of programs: " + std::to_string(count)
                      : "Reading details: " + std::to_string(std::min(detailed, count)) + " of " +
                            std::to_string(count));
  }
}

std::vector<TProductRecord> TDiscovery::Read(EProductKind AKind) {
  std::vector<TProductRecord> records;
  const bool ofPrograms = AKind == EProductKind::Program;
  ForEach(ofPrograms ? *FPrograms : *FUpdates, [&](IProduct& AProduct) {
    static_cast<void>(AProduct.IsChanged());  // what is read now is no news any more
    records.push_back(ReadProduct(AProduct, AKind));
  });
  if (ofPrograms) FCount = records.size();
  return records;
}

std::vector<TProductRecord> TDiscovery::ReadAll() {
  std::vector<TProductRecord> products = Read();
  std::ranges::move(Read(EProductKind::Update), std::back_inserter(products));
  return products;
}

TInterfaceRef<IProduct> TDiscovery::ProductOf(const TProductRecord& AProgram) {
  TInterfaceRef<IProduct> found;
  ForEach(*FPrograms, [&](IProduct& AProduct) {
    if (found || ReadProduct(AProduct, EProductKind::Program) != AProgram) return;
    AProduct.QueryInterface(IProduct::IID, reinterpret_cast<void**>(found.Receive()));
  });
  return found;
}

bool TDiscovery::HasNews() {
  std::size_t count = 0;
  bool changed = false;
  ForEach(*FPrograms, [&](IProduct& AProduct) {
    ++count;
    changed = AProduct.IsChanged() || changed;
  });
  return changed || count != FCount;
}

void Pause(std::chrono::milliseconds ADuration) {
  constexpr std::chrono::milliseconds step(50);
  for (; ADuration > std::chrono::milliseconds(0) && !IsInterrupted(); ADuration -= step) {
    std::this_thread::sleep_for(std::min(step, ADuration));
  }
}

}  // namespace varcolin::host
