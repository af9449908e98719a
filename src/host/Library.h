// The library as the host holds it: loaded, with its manager and what the host asks of the sibling libraries. One
// implementation a target. One thread at a time.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Picture.h"
#include "host/ProductRecord.h"
#include "intf/intf_Varcolin.h"

namespace varcolin::host {

/// One process; Path is empty when it cannot be read.
struct TRunningProcess {
  std::uint32_t Id = 0;
  std::u16string Path;
};

/// Whether it matters to the host which machine stands behind the library.
enum class EMachineUse { Reads, None };

/// The loaded library. Every interface obtained through it is given back before it goes.
class TLibrary {
 public:
  /// Loads the library. AMachine: UTF-8 path of a machine image; none for the built-in sample machine (native) or the
  /// computer that this runs on (Windows, where naming an image is an error). The user is told when the sample machine
  /// is read. Throws EHostError.
  explicit TLibrary(const std::optional<std::string>& AMachine, EMachineUse AUse = EMachineUse::Reads);
  TLibrary(const TLibrary&) = delete;
  TLibrary& operator=(const TLibrary&) = delete;
  /// Stops the library and unloads it.
  ~TLibrary();

  /// Whether this host can read machine images.
  [[nodiscard]] static bool HasMachineImages() noexcept;

  [[nodiscard]] IVarcolin& Manager() const noexcept { return *FManager; }

  /// Whether this process has administrator rights. Throws EHostError when the backup service cannot be asked.
  [[nodiscard]] bool IsElevated() const;
  /// The processes that run at this moment. Throws EHostError when the process list cannot be reached.
  [[nodiscard]] std::vector<TRunningProcess> Processes() const;
  /// Title of a window that the library named; empty when it has gone.
  [[nodiscard]] std::u16string WindowTitle(TNativeUInt AWindow) const;
  /// What the machine has told its user in message boxes since the last call, where nobody saw them.
  [[nodiscard]] std::vector<std::string> TakeMessages() const;

  /// The large icon (32 by 32 pixels) of a product: image AIndex of the list that programs or updates have. None when
  /// there is no such image or its picture is broken.
  [[nodiscard]] std::optional<TPicture> LargeIcon(EProductKind AKind, std::int32_t AIndex) const;

  /// The log file of the library, a Windows path. Throws EHostError when the suite's helper cannot be reached.
  [[nodiscard]] std::u16string LogPath() const;
  /// The content of a file of the machine; none when it cannot be read.
  [[nodiscard]] std::optional<std::vector<std::byte>> ReadFile(const std::u16string& APath) const;

 private:
  struct TModules;

  /// An interface of a sibling library by its GUID text (both texts live as long as the program); null when there is
  /// none. No reference of the caller's own.
  [[nodiscard]] void* Sibling(const char16_t* ALibrary, const char16_t* AGuid) const;

  /// Image AIndex (0 or more) of an image list of the library; none when there is none that can be drawn.
  [[nodiscard]] std::optional<TPicture> DrawImage(TNativeUInt AImageList, std::int32_t AIndex) const;

  std::unique_ptr<TModules> FModules;
  TInterfaceRef<IVarcolin> FManager;
};

}  // namespace varcolin::host
