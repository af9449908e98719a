// A simulated machine with the library loaded on it, as a host uses it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/Facts.h"
#include "intf/intf_Varcolin.h"
#include "library/NativeRoot.h"
#include "library/uModules.h"
#include "platform/simulated/SimulatedMachine.h"

namespace varcolin::testing {

/// One property as text, UTF-8: dates as "2012-08-09 10:11:12" (empty for 0), numbers in decimal, "null" for none.
[[nodiscard]] std::string PropertyOf(IProduct& AProduct, TPropertyID AID);
/// The names of the actions in a set, with commas between them.
[[nodiscard]] std::string ActionsOf(TPossibleActionsSet AActions);
/// "name {guid}" for a program, "name {id} (type) <parent>" for an update.
[[nodiscard]] std::string TitleOf(IProduct& AProduct);

/// Loads the library over a machine, drives its clock, and reads what a host would read.
class TSession {
 public:
  explicit TSession(const TSimulatedFacts& AFacts = {});
  ~TSession();

  [[nodiscard]] TSimulatedMachine& Machine() noexcept { return FInstalled.Machine(); }
  /// Loads registry text in the version 5 form, without its header line.
  void Reg(std::string_view ABody);
  /// Enters a program of this name, which is its key's as well, in the 64-bit view; AValues as lines of registry text.
  void AddProgram(std::string_view AName, std::string_view AValues = {});
  /// Loads the library's modules, over AFacilities when they are given; the manager is then there.
  IVarcolin& Load();
  IVarcolin& Load(const TMachine& AFacilities);
  void Unload();
  /// Stops the library, letting time pass as long as that takes.
  void Stop();
  [[nodiscard]] IVarcolin& Manager() noexcept { return *FManager; }

  /// Refreshes and returns when everything is read and the reader waits for changes.
  void Discover();
  /// Lets the reader see a change and returns when it has read the lists and details again.
  void LetChangesBeSeen();
  /// Whether an action of the product runs.
  [[nodiscard]] static bool IsBusy(IProduct& AProduct);
  /// Asks for an action; whether the product was idle.
  static bool Start(IProduct& AProduct, TPossibleActions AAction);
  /// Runs an action and lets time pass until the product is idle again, with the reader waiting for changes. The
  /// milliseconds that it took, rounded up to the library's looks.
  std::uint32_t RunToItsEnd(IProduct& AProduct, TPossibleActions AAction);
  /// The products of a list, in its order.
  [[nodiscard]] std::vector<TInterfaceRef<IProduct>> Programs();
  [[nodiscard]] std::vector<TInterfaceRef<IProduct>> Updates();
  [[nodiscard]] std::vector<std::string> ProgramTitles();
  [[nodiscard]] std::vector<std::string> UpdateTitles();
  /// The first program with this display name; the test fails when there is none.
  [[nodiscard]] TInterfaceRef<IProduct> Program(std::string_view AName);
  /// The log file's lines without their times, UTF-8.
  [[nodiscard]] std::vector<std::string> LogLines();
  /// How many lines of the log file are this one.
  [[nodiscard]] std::ptrdiff_t LogCount(std::string_view ALine);

 private:
  TInstalledMachine FInstalled;
  std::unique_ptr<TLibraryModules> FModules;
  IVarcolin* FManager = nullptr;
};

}  // namespace varcolin::testing
