// The library's own interfaces, as a host uses them. Unless an operation says otherwise, any thread may call it, no
// operation raises an exception, and a failed operation returns the default that its comment names.
//
// The order in which a host calls: GetInstance; SetStrings before the first discovery; Refresh; then any reading, with
// GetState polled; Stop once, before it unloads the library.
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// GUID texts that GetInstance and the sibling loader pass are the registry form of the IID of the interface.
inline constexpr std::u16string_view VarcolinGuidText = u"{D1465CA9-77C6-49DF-929C-4E4D64730201}";

/// How far discovery has come.
enum class TVRCState : std::int32_t {
  vrcsListLoading = 0,  ///< the lists are being read; also before the first Refresh
  vrcsInfoLoading = 1,  ///< the lists are complete, details are being read
  vrcsLoaded = 2,       ///< lists and details are complete; changes are watched for
};

/// What a product can be asked to do.
enum class TPossibleActions : std::uint8_t {
  paUninstall = 0,
  paUninstallQuiet = 1,
  paModify = 2,
  paRepair = 3,
  paModifyRemove = 4,        ///< the one program of a product that has only an uninstall command
  paRemoveFromRegistry = 5,  ///< takes the entry off the list; runs no command
};

/// No action. RunAction with it starts nothing and only tells whether an action runs.
inline constexpr TPossibleActions NoAction{0xFF};

/// A set of TPossibleActions in one byte: bit n stands for the value n.
using TPossibleActionsSet = std::uint8_t;

[[nodiscard]] constexpr TPossibleActionsSet ActionBit(TPossibleActions AAction) noexcept {
  return static_cast<TPossibleActionsSet>(1U << static_cast<unsigned>(AAction));
}

/// How often a program is used.
enum class TUsedType : std::int32_t { utNone = 0, utRarely = 1, utOccasionaly = 2, utFrequently = 3 };

/// How far a program or its publisher is trusted.
enum class TSoftwareRating : std::uint8_t { stTrustWorthy = 0, stUnknown = 1, stRisky = 2 };

/// What kind of update a product is; rtNone for programs.
enum class TReleaseType : std::uint8_t {
  rtNone = 0,
  rtSoftwareUpdate = 1,
  rtUpdate = 2,
  rtUpdateRollup = 3,
  rtServicePack = 4,
  rtCriticalUpdate = 5,
  rtSecurityUpdate = 6,
  rtHotfix = 7,
};

/// The numbers of IProduct::GetProperty. 0 to 14 are served for every product, 15 to 21 for programs only, 22 to 24
/// for updates only.
enum class TPropertyID : std::int32_t {
  DisplayName = 0,
  DisplayVersion = 1,
  Publisher = 2,
  InstallLocation = 3,
  InstallSource = 4,
  InstallDate = 5,  ///< date, local time; 0 when unknown
  Contact = 6,
  Comments = 7,
  ReadMeLink = 8,
  HelpLink = 9,
  SupportLink = 10,
  SupportTelephone = 11,
  UpdateInfoLink = 12,
  Language = 13,
  EstimatedSize = 14,  ///< 64-bit integer, bytes; 0 or less when unknown
  RegisteredOwner = 15,
  RegisteredCompany = 16,
  Guid = 17,  ///< served, but not advertised by GetSupportedProperties
  ProductID = 18,
  LastUsedDate = 19,  ///< date; 0 when unknown
  Usage = 20,         ///< TUsedType
  Rating = 21,        ///< TSoftwareRating
  UpdateID = 22,
  ReleaseType = 23,  ///< TReleaseType
  ParentDisplayName = 24,
};

struct IForceRemove;

/// One installed program or update. The interface refers to a record that the library's list owns: hold the
/// collection's lock while reading, so that discovery cannot remove the record meanwhile.
struct IProduct : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x04}};

  /// Writes property AID (TPropertyID): a private copy that the caller clears. Null variant for numbers that this kind
  /// of product does not serve.
  virtual void VARCOLIN_CALL GetProperty(std::int32_t AID, TOleVariant* AResult) = 0;
  /// Index of the product's icon, valid in both image lists of its collection; -1 without a product.
  virtual std::int32_t VARCOLIN_CALL GetIconIndex() = 0;
  /// The actions that the product offers.
  virtual TPossibleActionsSet VARCOLIN_CALL GetPossibleActions() = 0;
  /// Whether the details have been read since the last call of this operation.
  virtual bool VARCOLIN_CALL IsChanged() = 0;
  /// Starts *AAction on a thread of its own and returns true; *AWndHandle is then 0. When an action of this product is
  /// running already, returns false with *AAction set to the running one and *AWndHandle to its top window (0 when it
  /// has none). An action counts as running until its process has ended, and the copy of itself that an uninstaller
  /// left in its place. A program's entry that is taken off the list starts nothing, nor does a number that is no
  /// action. What cannot be started is shown to the user and logged.
  virtual bool VARCOLIN_CALL RunAction(TPossibleActions* AAction, TNativeUInt* AWndHandle) = 0;
  /// Writes a new force-remove engine for this product, with a reference of the caller's own.
  virtual void VARCOLIN_CALL CreateForceRemove(IForceRemove** AResult) = 0;
  /// False when the running host lies in this product's install location.
  virtual bool VARCOLIN_CALL IsNotHost() = 0;

 protected:
  ~IProduct() = default;
};

/// What a host must know of a product's commands before it lets one run. A product serves it by QueryInterface.
struct IProductCommands : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x20}};

  /// Writes the command line that RunAction starts for this action; empty when it starts none.
  virtual void VARCOLIN_CALL GetActionCommand(TPossibleActions AAction, TOleString* AResult) = 0;
  /// Whether the commands come from the user's own part of the registry, which every program of the user can write:
  /// an elevated host should not run them unasked. True also without a product.
  virtual bool VARCOLIN_CALL IsUserCommand() = 0;

 protected:
  ~IProductCommands() = default;
};

/// A live view of the programs or of the updates. Indices are valid only while the collection is locked.
struct IProductCollection : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x03}};

  /// The property numbers that a host should show: bit n stands for number n.
  virtual std::uint32_t VARCOLIN_CALL GetSupportedProperties() = 0;
  /// Number of products.
  virtual std::int32_t VARCOLIN_CALL GetCount() = 0;
  /// Writes product AIndex with a reference of the caller's own; null when the index is out of range.
  virtual void VARCOLIN_CALL GetItem(std::int32_t AIndex, IProduct** AResult) = 0;
  /// Image list with the 16x16 icons (Windows: HIMAGELIST); it belongs to the library.
  virtual TNativeUInt VARCOLIN_CALL GetIconListSmall() = 0;
  /// Image list with the 32x32 icons; it belongs to the library.
  virtual TNativeUInt VARCOLIN_CALL GetIconListLarge() = 0;
  /// Locks the list for the calling thread (re-entrant); discovery's changes wait until Unlock.
  virtual void VARCOLIN_CALL Lock() = 0;
  virtual void VARCOLIN_CALL Unlock() = 0;

 protected:
  ~IProductCollection() = default;
};

/// Which of the library's own threads still work. The manager serves it by QueryInterface.
struct IBackgroundWork : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x21}};

  /// Whether the thread that RefreshARPCache started still works; once it does not, it has written the log. Not while
  /// RefreshARPCache or Stop runs.
  virtual bool VARCOLIN_CALL IsRefreshingARPCache() = 0;
  /// Whether the thread that Refresh started still works: from Refresh on until Stop, unless it fails. GetState then
  /// stays as it is; once this answers false, the log says why. Any thread.
  virtual bool VARCOLIN_CALL IsDiscovering() = 0;

 protected:
  ~IBackgroundWork() = default;
};

/// The manager: one object for the process, obtained from GetInstance.
struct IVarcolin : IInterface {
  static constexpr TGUID IID{0xD1465CA9, 0x77C6, 0x49DF, {0x92, 0x9C, 0x4E, 0x4D, 0x64, 0x73, 0x02, 0x01}};

  /// Writes a new collection over the installed programs, with a reference of the caller's own.
  virtual void VARCOLIN_CALL GetPrograms(IProductCollection** AResult) = 0;
  /// The same over the installed updates.
  virtual void VARCOLIN_CALL GetUpdates(IProductCollection** AResult) = 0;
  /// How far discovery has come.
  virtual TVRCState VARCOLIN_CALL GetState() = 0;
  /// Writes the two words last given to SetHostEvent. The library never calls the handler.
  virtual void VARCOLIN_CALL GetHostEvent(TEventHandler* AResult) = 0;
  virtual void VARCOLIN_CALL SetHostEvent(const TEventHandler* AHandler) = 0;
  /// Opens the Windows optional-features dialog, or brings a running one to the front. Reports nothing.
  virtual void VARCOLIN_CALL ShowWindowsFeatures() = 0;
  /// Restarts discovery. Call it, RefreshARPCache and Stop from one thread at a time.
  virtual void VARCOLIN_CALL Refresh() = 0;
  /// Makes the shell recompute its cached program information, on a thread of low priority; at most once until Stop.
  /// How it went stands in the log.
  virtual void VARCOLIN_CALL RefreshARPCache() = 0;
  /// Stops every activity of the library and waits for it.
  virtual void VARCOLIN_CALL Stop() = 0;
  /// Hands the localised texts in: lines of the form key=value; null changes nothing. Not while discovery runs.
  virtual void VARCOLIN_CALL SetStrings(IStringList* AStrings) = 0;

 protected:
  ~IVarcolin() = default;
};

}  // namespace varcolin
