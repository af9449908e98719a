// A host as any program outside the project would write it: the boundary's headers, and the handful of Windows
// functions that it needs, declared by itself, so that no Windows header stands behind these tests.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "intf/intf_Varcolin.h"

namespace varcolin::boundary {

/// "Varcolin.dll" loaded from the folder of this program; stopped and freed with the object.
class TLibrary {
 public:
  TLibrary();
  TLibrary(const TLibrary&) = delete;
  TLibrary& operator=(const TLibrary&) = delete;
  ~TLibrary();

  /// Calls the export.
  [[nodiscard]] void* GetInstance(const char16_t* AGuid) const { return FGetInstance(AGuid, 0); }
  /// The manager; raises std::runtime_error when the library does not serve it.
  [[nodiscard]] IVarcolin& Manager() const;

 private:
  void* FModule;
  TGetInstance FGetInstance = nullptr;
};

/// A property: nothing (null variant), text, date, 64-bit or 32-bit number.
using TProperty = std::variant<std::monostate, std::u16string, TDateTime, std::int64_t, std::int32_t>;

/// Everything that the boundary tells of one program.
struct TListed {
  std::vector<TProperty> Properties;  ///< by property number, 0 to 21
  TPossibleActionsSet Actions = 0;
  std::int32_t IconIndex = -1;

  [[nodiscard]] std::u16string Text(TPropertyID AID) const;
};

[[nodiscard]] TProperty ReadProperty(IProduct& AProduct, std::int32_t AID);

/// The listed programs with this display name, read under the list's lock.
[[nodiscard]] std::vector<TListed> ProgramsNamed(IVarcolin& AManager, std::u16string_view AName);

/// The first listed program with this display name; null when there is none.
[[nodiscard]] TInterfaceRef<IProduct> ProductNamed(IVarcolin& AManager, std::u16string_view AName);
/// Whether an action of the product runs; AWindow: its top window.
[[nodiscard]] bool IsBusy(IProduct& AProduct, TNativeUInt* AWindow = nullptr);
/// Title of a window; empty when it has gone.
[[nodiscard]] std::u16string TitleOf(TNativeUInt AWindow);
/// An uninstall key of this user that goes with the object. Key and program have the same name.
class TUserEntry {
 public:
  TUserEntry(const std::u16string& AName, const std::u16string& AUninstall);
  TUserEntry(const TUserEntry&) = delete;
  TUserEntry& operator=(const TUserEntry&) = delete;
  ~TUserEntry();

  [[nodiscard]] bool Exists() const;

 private:
  std::u16string FPath;
};

/// Asks ACondition until it holds; false when it does not hold within a minute.
[[nodiscard]] bool Eventually(const std::function<bool()>& ACondition);
/// Starts discovery and waits for its end; false when it does not end within a minute.
[[nodiscard]] bool Discover(IVarcolin& AManager);

/// The full path of a file beside this program.
[[nodiscard]] std::wstring BesideThisProgram(std::wstring_view AName);
/// Runs a program with one argument, waits for its end and returns its exit code; -1 when it could not be started.
int RunProgram(const std::wstring& AProgram, const std::wstring& AArgument);

/// Whether there is a top window with this title.
[[nodiscard]] bool HasWindow(const char16_t* ATitle);
/// The text of the message box with this caption, which is closed; empty when none shows.
[[nodiscard]] std::u16string DismissMessage(const char16_t* ACaption);

}  // namespace varcolin::boundary
