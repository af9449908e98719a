#include <filesystem>

#include "host/Cells.h"
#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Library.h"
#include "host/OutputFile.h"
#include "host/Terminal.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

using TFormat = std::string (*)(const TPicture&);

/// How the picture is written, by the extension of the file.
TFormat FormatOf(const std::string& AFile) {
  const std::filesystem::path path(std::u8string(AFile.begin(), AFile.end()));
  const std::u8string ending = path.extension().u8string();
  const std::u32string extension = FoldCase({reinterpret_cast<const char*>(ending.data()), ending.size()});
  if (extension == U".png") return FormatPng;
  if (extension == U".ico") return FormatIco;
  throw EHostError("the name of the file must end in .png or .ico, and \"" + Printable(AFile) + "\" does not",
                   ExitUsage);
}

}  // namespace

int RunIcon(const TIconOptions& AOptions) {
  const TFormat format = FormatOf(AOptions.Output);
  TProductRecord product;
  std::optional<TPicture> icon;
  {
    const TLibrary library(AOptions.Machine);
    TDiscovery discovery(library.Manager());
    discovery.WaitUntilLoaded();
    product = ChooseProduct(discovery.ReadAll(), AOptions.NameOrGuid);
    icon = library.LargeIcon(product.Kind, product.IconIndex);
  }
  const std::string name = Printable(product.DisplayName);
  if (product.IconIndex < 0) throw EHostError(name + " has no icon");
  if (!icon) throw EHostError("the icon of " + name + " cannot be drawn: its picture is broken");
  WriteOutputFile(AOptions.Output, format(*icon));
  WriteError("varcolin: the icon of " + name + " is in " + Printable(AOptions.Output) + '\n');
  return ExitOk;
}

}  // namespace varcolin::host
