// What the sources of the simulated files share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/simulated/SimulatedFiles.h"
#include "support/uText.h"

namespace varcolin {

struct TSimulatedFiles::TNode {
  std::u16string Name;
  std::uint32_t Attributes = 0;
  TFileTime CreationTime;
  TFileTime LastAccessTime;
  TFileTime LastWriteTime;
  std::map<std::u16string, std::unique_ptr<TNode>, TTextLess> Children;  // the order of NTFS
  TFileBytes Bytes;
  std::vector<std::byte> Tail;     // appended since; joined to Bytes by the next reader
  std::filesystem::path HostPath;  // when set, Bytes are not used
  std::uint64_t Size = 0;
  std::u16string LinkTarget;
  bool IsInUse = false;
  bool IsDenied = false;

  [[nodiscard]] bool IsFolder() const noexcept { return (Attributes & FileAttribute::Folder) != 0; }
  [[nodiscard]] bool IsLink() const noexcept { return (Attributes & FileAttribute::ReparsePoint) != 0; }
  [[nodiscard]] TFileFacts Facts() const {
    return {Attributes, CreationTime, LastAccessTime, LastWriteTime, IsFolder() ? 0 : Size};
  }
  void SetBytes(TFileBytes ABytes) {
    Bytes = std::move(ABytes);
    Size = Bytes.Data.size();
    Tail.clear();
    HostPath.clear();
  }
  void JoinTail() {
    if (Tail.empty()) return;
    const auto data = std::make_shared<std::vector<std::byte>>(Bytes.Data.begin(), Bytes.Data.end());
    data->insert(data->end(), Tail.begin(), Tail.end());
    SetBytes({data, *data});
  }
};

// Where a path leads. Node is null when only the last component is missing.
struct TSimulatedFiles::TFound {
  TResolvedPath Path;  // without links, as far as they were followed
  TNode* Parent = nullptr;
  TNode* Node = nullptr;
  bool IsNew = false;  // made by this call
};

}  // namespace varcolin
