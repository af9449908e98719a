// What the host asks of the library in the same way on both targets.
#include "host/Library.h"

#include "host/HostError.h"
#include "intf/intf_Helper.h"

namespace varcolin::host {

std::u16string TLibrary::LogPath() const {
  const TInterfaceRef<IHelper> helper(
      static_cast<IHelper*>(Sibling(u"helper.dll", u"{5C9ABD04-59E8-4686-8E32-FF648BB7FDD5}")));
  const TInterfaceRef<IGlobals> globals(
      static_cast<IGlobals*>(Sibling(u"helper.dll", u"{E3B78765-F359-4D65-86A3-5FE2CA92922E}")));
  if (!helper || !globals) throw EHostError("helper.dll does not tell where the log is");
  TOleText folder;
  TOleText maker;
  TOleText product;
  helper->GetDataFolder(folder.Receive());
  globals->GetMakerName(maker.Receive());
  globals->GetProductName(product.Receive());
  std::u16string path(folder.View());
  for (const std::u16string_view name : {maker.View(), product.View(), std::u16string_view(u"Logs")}) {
    path += u'\\';
    path += name;
  }
  return path + u"\\Varcolin.log";
}

}  // namespace varcolin::host
