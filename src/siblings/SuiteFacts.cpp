#include "siblings/SuiteFacts.h"

#include <array>

#include "platform/Files.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "support/uPaths.h"

namespace varcolin {

std::u16string SuiteDataFolder(const TMachine& AMachine) {
  std::u16string folder;
  if (AMachine.Shell.GetSpecialFolder(SpecialFolder::AppData, folder) != WinError::Success) return {};
  return std::u16string(ExcludeTrailingPathDelimiter(folder));
}

std::optional<std::uint32_t> ReadUserNumber(const TMachine& AMachine, std::u16string_view AKey,
                                            std::u16string_view AValue) {
  TRegistryKey key;
  TRegistryValue value;
  if (AMachine.Registry.OpenKey(ERegistryRoot::CurrentUser, AKey, KeyAccess::Read, key) != WinError::Success ||
      AMachine.Registry.QueryValue(key, AValue, value) != WinError::Success || value.Type != RegType::Dword ||
      value.Data.size() != sizeof(std::uint32_t)) {
    return std::nullopt;
  }
  std::uint32_t number = 0;
  for (std::size_t i = 0; i < value.Data.size(); ++i) {
    number |= std::to_integer<std::uint32_t>(value.Data[i]) << (8 * i);
  }
  return number;
}

bool WriteUserNumber(const TMachine& AMachine, std::u16string_view AKey, std::u16string_view AValue,
                     std::uint32_t ANumber) {
  TRegistryKey key;
  bool isNew = false;
  if (AMachine.Registry.CreateKeyPath(ERegistryRoot::CurrentUser, AKey, KeyAccess::Write, key, isNew) !=
      WinError::Success) {
    return false;
  }
  std::array<std::byte, sizeof(ANumber)> data;
  for (std::size_t i = 0; i < data.size(); ++i) data[i] = static_cast<std::byte>(ANumber >> (8 * i));
  return AMachine.Registry.SetValue(key, AValue, RegType::Dword, data.data(), data.size()) == WinError::Success;
}

bool MakeFolders(const TMachine& AMachine, std::u16string_view AFolder) {
  const std::u16string_view folder = ExcludeTrailingPathDelimiter(AFolder);
  TFileFacts facts;
  if (AMachine.Files.GetFacts(folder, facts) == WinError::Success) return facts.IsFolder();
  // parents first; what exists already, a drive's root included, answers with an error that does not matter
  for (std::size_t end = folder.find(u'\\'); end != std::u16string_view::npos; end = folder.find(u'\\', end + 1)) {
    (void)AMachine.Files.MakeFolder(folder.substr(0, end));
  }
  (void)AMachine.Files.MakeFolder(folder);
  return AMachine.Files.GetFacts(folder, facts) == WinError::Success && facts.IsFolder();
}

}  // namespace varcolin
