// Paths, views and links of the simulated registry.
#include <algorithm>
#include <array>
#include <utility>

#include "platform/simulated/RegistryLayout.h"
#include "platform/simulated/SimulatedRegistry.Parts.h"
#include "support/uExceptions.h"
#include "support/uText.h"

namespace varcolin {

namespace {

struct TRootName {
  std::u16string_view Full;
  std::u16string_view Short;
  ERegistryRoot Root;
};

constexpr std::array<TRootName, 5> RootNames = {{
    {u"HKEY_CLASSES_ROOT", u"HKCR", ERegistryRoot::ClassesRoot},
    {u"HKEY_CURRENT_USER", u"HKCU", ERegistryRoot::CurrentUser},
    {u"HKEY_LOCAL_MACHINE", u"HKLM", ERegistryRoot::LocalMachine},
    {u"HKEY_USERS", u"HKU", ERegistryRoot::Users},
    {u"HKEY_CURRENT_CONFIG", u"HKCC", ERegistryRoot::CurrentConfig},
}};

std::u16string Join(std::u16string_view AFirst, std::u16string_view ASecond) {
  std::u16string result(AFirst);
  if (!result.empty() && !ASecond.empty()) result += u'\\';
  return result.append(ASecond);
}

bool Contains(std::span<const std::u16string_view> ANames, std::u16string_view AName) {
  return std::any_of(ANames.begin(), ANames.end(), [&](auto AEntry) { return SameText(AEntry, AName); });
}

// Takes the first name off a path; blank when nothing is left. Repeated backslashes count as one.
std::u16string_view TakeName(std::u16string_view& APath) {
  while (!APath.empty() && APath.front() == u'\\') APath.remove_prefix(1);
  const std::size_t end = std::min(APath.find(u'\\'), APath.size());
  const std::u16string_view name = APath.substr(0, end);
  APath.remove_prefix(end);
  return name;
}

bool HasLongName(std::u16string_view APath) {
  for (auto name = TakeName(APath); !name.empty(); name = TakeName(APath)) {
    if (name.size() > TRegistryNode::MaxNameLength) return true;
  }
  return false;
}

}  // namespace

void TSimulatedRegistry::BuildFixedKeys() {
  const TFileTime now = FClock.Now();
  FRoot = TRegistryNode::Make(FKeyMemory, nullptr, u"", now);
  FMachine = &FRoot->AddChild(RegistryLayout::Machine, now);
  FUsers = &FRoot->AddChild(RegistryLayout::Users, now);
  FUser = &FUsers->AddChild(FFacts.UserSid, now);
  FUserClasses = &FUsers->AddChild(FFacts.UserSid + std::u16string(RegistryLayout::ClassesSuffix), now);
  TRegistryNode& software = FMachine->AddChild(RegistryLayout::Software, now);
  software.AddChild(RegistryLayout::Classes, now);
  TPosition unused;
  static_cast<void>(Walk(*FRoot, RegistryLayout::CurrentConfig, false, EMissing::Load, unused));
  if (FFacts.Is64BitWindows) {
    for (const std::u16string_view key : RegistryLayout::SharedKeys()) {
      static_cast<void>(Walk(software, key, false, EMissing::Load, unused));
    }
    for (const std::u16string_view key : RegistryLayout::LinkedClasses()) {
      static_cast<void>(Walk(*software.FindChild(RegistryLayout::Classes), key, false, EMissing::Load, unused));
    }
  }
  AddFixedLinks();
}

// Puts the links where they belong; needed again after whole trees were removed.
void TSimulatedRegistry::AddFixedLinks() {
  const auto link = [this](std::u16string_view APath, std::u16string_view AName, std::u16string ATarget) {
    TPosition parent;
    if (Walk(*FRoot, APath, false, EMissing::Load, parent) != WinError::Success) return;
    if (parent.Node->FindChild(AName) != nullptr) return;
    parent.Node->AddChild(AName, FClock.Now()).Target = std::make_unique<const std::u16string>(std::move(ATarget));
  };
  link(Join(Join(RegistryLayout::Users, FFacts.UserSid), RegistryLayout::Software), RegistryLayout::Classes,
       PathOf(*FUserClasses));
  if (!FFacts.Is64BitWindows) return;
  const std::u16string software = Join(RegistryLayout::Machine, RegistryLayout::Software);
  const std::u16string classes = Join(software, RegistryLayout::Classes);
  const std::u16string classes32 = Join(classes, RegistryLayout::Wow64Node);
  for (const std::u16string_view key : RegistryLayout::LinkedClasses()) link(classes32, key, Join(classes, key));
  const std::u16string software32 = Join(software, RegistryLayout::Wow64Node);
  link(software32, RegistryLayout::Classes, classes32);
  for (const std::u16string_view key : RegistryLayout::SharedKeys()) {
    const std::size_t split = key.rfind(u'\\');
    const bool nested = split != std::u16string_view::npos;
    link(nested ? Join(software32, key.substr(0, split)) : software32, nested ? key.substr(split + 1) : key,
         Join(software, key));
  }
}

bool TSimulatedRegistry::IsSoftware(const TRegistryNode& ANode) const {
  return ANode.Parent == FMachine && SameText(ANode.Name(), RegistryLayout::Software);
}

bool TSimulatedRegistry::IsClasses(const TRegistryNode& ANode) const {
  if (ANode.Parent == nullptr) return false;
  if (ANode.Parent == FUsers) return EndsText(RegistryLayout::ClassesSuffix, ANode.Name());
  return IsSoftware(*ANode.Parent) && SameText(ANode.Name(), RegistryLayout::Classes);
}

// Roots and the keys that a hive is mounted at cannot be removed.
bool TSimulatedRegistry::IsFixed(const TRegistryNode& ANode) const {
  return ANode.Parent == nullptr || ANode.Parent == FRoot.get() || ANode.Parent == FMachine || ANode.Parent == FUsers;
}

TWinError TSimulatedRegistry::CheckCreation(const TRegistryNode& AParent, EMissing AMissing) const {
  std::size_t depth = 0;
  for (const TRegistryNode* node = &AParent; node != nullptr; node = node->Parent) ++depth;
  if (depth > TRegistryNode::MaxDepth) return WinError::InvalidParameter;
  if (AMissing != EMissing::Create) return WinError::Success;
  // only a hive is mounted there
  if (&AParent == FMachine || &AParent == FUsers) return WinError::InvalidParameter;
  return (AParent.DeniedRights & KeyRight::CreateSubKey) != 0 ? WinError::AccessDenied : WinError::Success;
}

TWinError TSimulatedRegistry::Step(std::u16string_view AName, EMissing AMissing, TPosition& AFound) {
  AFound.Created = false;
  TRegistryNode& parent = *AFound.Node;
  TRegistryNode* child = parent.FindChild(AName);
  if (child != nullptr && child->Target) return Walk(*FRoot, *child->Target, false, AMissing, AFound);
  if (child == nullptr) {
    if (AMissing == EMissing::Fail) return WinError::FileNotFound;
    if (const TWinError error = CheckCreation(parent, AMissing); error != WinError::Success) return error;
    child = &parent.AddChild(AName, FClock.Now());
    AFound.Created = true;
    if (AMissing != EMissing::Load) NoteChange(parent, RegNotify::ChangeName);
    if (AMissing == EMissing::Create) Log(ERegistryChange::KeyCreated, *child, {});
  }
  AFound.Node = child;
  return WinError::Success;
}

TWinError TSimulatedRegistry::Walk(TRegistryNode& AFrom, std::u16string_view APath, bool AView32, EMissing AMissing,
                                   TPosition& AFound) {
  AFound.Node = &AFrom;
  AFound.Created = false;
  const auto step = [&](std::u16string_view AName) { return Step(AName, AMissing, AFound); };
  for (auto name = TakeName(APath); !name.empty(); name = TakeName(APath)) {
    const bool redirected =
        AView32 && (IsSoftware(*AFound.Node)
                        ? !SameText(name, RegistryLayout::Wow64Node) && !SameText(name, RegistryLayout::Classes)
                        : IsClasses(*AFound.Node) && Contains(RegistryLayout::RedirectedClasses(), name));
    TWinError error = redirected ? step(RegistryLayout::Wow64Node) : WinError::Success;
    if (error == WinError::Success) error = step(name);
    if (error != WinError::Success) return error;
  }
  return AView32 && IsSoftware(*AFound.Node) ? step(RegistryLayout::Wow64Node) : WinError::Success;
}

TWinError TSimulatedRegistry::LocateMerged(std::u16string APath, EMissing AMissing, TPosition& AFound) {
  TPosition machineClasses;
  if (const TWinError error = Walk(*FMachine, u"Software\\Classes", false, AMissing, machineClasses);
      error != WinError::Success) {
    return error;
  }
  TPosition user, machine;
  const bool inUser = Walk(*FUserClasses, APath, AFound.View32, EMissing::Fail, user) == WinError::Success;
  const bool inMachine = Walk(*machineClasses.Node, APath, AFound.View32, EMissing::Fail, machine) == WinError::Success;
  if (inUser) {
    AFound.Node = user.Node;
    AFound.Shadow = inMachine ? machine.Node : nullptr;
  } else if (inMachine) {
    AFound.Node = machine.Node;
  } else if (AMissing == EMissing::Fail) {
    return WinError::FileNotFound;
  } else {
    // goes to the machine's classes, unless it lies in a key that only the user has
    std::u16string_view prefix = APath;
    bool prefixInUser = false, prefixInMachine = false;
    while (!prefixInUser && !prefixInMachine && !prefix.empty()) {
      const std::size_t split = prefix.rfind(u'\\');
      prefix = prefix.substr(0, split == std::u16string_view::npos ? 0 : split);
      prefixInUser = Walk(*FUserClasses, prefix, AFound.View32, EMissing::Fail, user) == WinError::Success;
      prefixInMachine = Walk(*machineClasses.Node, prefix, AFound.View32, EMissing::Fail, machine) == WinError::Success;
    }
    TRegistryNode& classes = prefixInMachine || !prefixInUser ? *machineClasses.Node : *FUserClasses;
    if (const TWinError error = Walk(classes, APath, AFound.View32, AMissing, AFound); error != WinError::Success) {
      return error;
    }
  }
  AFound.Merged = true;
  AFound.MergedPath = std::move(APath);
  return WinError::Success;
}

TWinError TSimulatedRegistry::Locate(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                     EMissing AMissing, TPosition& AFound) {
  const std::uint32_t view = AAccess & KeyAccess::ViewMask;
  const TOpenKey* open = nullptr;
  if (!ABase.IsRoot()) {
    const auto found = FOpen.find(ABase.Key());
    if (found == FOpen.end()) return WinError::InvalidHandle;
    open = &found->second;
    if (open->Node->Removed) return WinError::KeyDeleted;
  }
  if (view == KeyAccess::ViewMask || HasNul(APath)) return WinError::InvalidParameter;
  if (APath.starts_with(u'\\')) return WinError::BadRegistryPath;
  if (HasLongName(APath)) return AMissing == EMissing::Fail ? WinError::FileNotFound : WinError::InvalidParameter;
  const bool base32 = open != nullptr ? open->View32 : FFacts.IsWow64;
  AFound.View32 = FFacts.Is64BitWindows && (view != 0 ? view == KeyAccess::Wow64_32Key : base32);
  if (open != nullptr) {
    if (open->Merged) return LocateMerged(Join(open->Merged->Path, APath), AMissing, AFound);
    // from the 64-bit into the 32-bit view: the same path, taken from the top
    if (AFound.View32 && !open->View32) {
      return Walk(*FRoot, Join(PathOf(*open->Node), APath), true, AMissing, AFound);
    }
    return Walk(*open->Node, APath, AFound.View32, AMissing, AFound);
  }
  switch (ABase.Root()) {
    case ERegistryRoot::ClassesRoot:
      return LocateMerged(std::u16string(APath), AMissing, AFound);
    case ERegistryRoot::CurrentUser:
      return Walk(*FUser, APath, AFound.View32, AMissing, AFound);
    case ERegistryRoot::LocalMachine:
      return Walk(*FMachine, APath, AFound.View32, AMissing, AFound);
    case ERegistryRoot::Users:
      return Walk(*FUsers, APath, AFound.View32, AMissing, AFound);
    case ERegistryRoot::CurrentConfig:
      return Walk(*FRoot, Join(RegistryLayout::CurrentConfig, APath), AFound.View32, AMissing, AFound);
    default:
      return WinError::InvalidHandle;
  }
}

// The path from the root.
std::u16string TSimulatedRegistry::PathOf(const TRegistryNode& ANode) {
  std::vector<const TRegistryNode*> nodes;
  for (const TRegistryNode* node = &ANode; node->Parent != nullptr; node = node->Parent) nodes.push_back(node);
  std::u16string path;
  for (auto node = nodes.rbegin(); node != nodes.rend(); ++node) {
    if (!path.empty()) path += u'\\';
    path += (*node)->Name();
  }
  return path;
}

// The path as people write it.
std::u16string TSimulatedRegistry::FullName(const TRegistryNode& ANode) const {
  const std::u16string path = PathOf(ANode);
  const std::pair<std::u16string, std::u16string_view> prefixes[] = {
      {PathOf(*FUserClasses), u"HKEY_CURRENT_USER\\Software\\Classes"},
      {PathOf(*FUser), u"HKEY_CURRENT_USER"},
      {PathOf(*FMachine), u"HKEY_LOCAL_MACHINE"},
      {PathOf(*FUsers), u"HKEY_USERS"},
  };
  for (const auto& [native, name] : prefixes) {
    if (path.starts_with(native) && (path.size() == native.size() || path[native.size()] == u'\\')) {
      return std::u16string(name) + path.substr(native.size());
    }
  }
  return path;
}

std::u16string TSimulatedRegistry::NativePath(std::u16string_view APath) const {
  std::u16string_view rest = APath;
  const std::u16string_view root = TakeName(rest);
  const auto found = std::find_if(RootNames.begin(), RootNames.end(), [&](const TRootName& AName) {
    return SameText(AName.Full, root) || SameText(AName.Short, root);
  });
  if (found == RootNames.end() || APath.starts_with(u'\\')) throw Exception(u"unknown root key");
  if (!rest.empty()) rest.remove_prefix(1);
  switch (found->Root) {
    case ERegistryRoot::ClassesRoot:
      return Join(u"MACHINE\\Software\\Classes", rest);
    case ERegistryRoot::CurrentUser:
      return Join(Join(RegistryLayout::Users, FUser->Name()), rest);
    case ERegistryRoot::Users:
      return Join(RegistryLayout::Users, rest);
    case ERegistryRoot::CurrentConfig:
      return Join(RegistryLayout::CurrentConfig, rest);
    default:
      return Join(RegistryLayout::Machine, rest);
  }
}

TRegistryNode* TSimulatedRegistry::FindDirect(std::u16string_view APath) {
  TPosition found;
  return Walk(*FRoot, NativePath(APath), false, EMissing::Fail, found) == WinError::Success ? found.Node : nullptr;
}

TRegistryNode& TSimulatedRegistry::MakeDirect(std::u16string_view APath, EMissing AMissing) {
  const std::u16string path = NativePath(APath);
  TPosition found;
  if (HasLongName(path)) throw Exception(u"a key name is longer than 255 characters");
  if (Walk(*FRoot, path, false, AMissing, found) != WinError::Success) throw Exception(u"keys are nested too deeply");
  return *found.Node;
}

}  // namespace varcolin
