// What the host asks of the library in the same way on both targets.
#include "host/Library.h"

#include "host/HostError.h"
#include "intf/intf_Brismere.h"
#include "intf/intf_Helper.h"
#include "intf/intf_Quillet.h"

namespace varcolin::host {

bool TLibrary::IsElevated() const {
  const TInterfaceRef<IBrismere> service(
      static_cast<IBrismere*>(Sibling(u"BrismereHelper.dll", u"{5C2990D5-37CD-4FE8-8EC4-A23723A7D4F1}")));
  if (!service) throw EHostError("BrismereHelper.dll does not tell the user's rights");
  return service->IsUserAdmin();
}

std::vector<TRunningProcess> TLibrary::Processes() const {
  const TInterfaceRef<IQuilletProcessList> list(
      static_cast<IQuilletProcessList*>(Sibling(u"QuilletHelper.dll", u"{CDCFC755-A3C6-4E67-8EB8-25EB9A51E85D}")));
  if (!list) throw EHostError("QuilletHelper.dll does not list the processes");
  std::vector<TRunningProcess> processes;
  list->Lock();
  list->RefreshList();
  for (std::int32_t index = 0; index < list->GetCount(); ++index) {
    TInterfaceRef<IQuilletProcess> process;
    list->GetItem(index, process.Receive());
    if (!process) continue;
    TOleText path;
    process->GetPath(path.Receive());
    processes.push_back({process->GetProcessID(), std::u16string(path.View())});
  }
  list->Unlock();
  return processes;
}

std::optional<TPicture> TLibrary::LargeIcon(EProductKind AKind, std::int32_t AIndex) const {
  if (AIndex < 0) return std::nullopt;
  TInterfaceRef<IProductCollection> products;
  if (AKind == EProductKind::Update) {
    FManager->GetUpdates(products.Receive());
  } else {
    FManager->GetPrograms(products.Receive());
  }
  if (!products) return std::nullopt;
  // while something is drawn, nothing is added to the image list
  products->Lock();
  const auto unlock = [](IProductCollection* ALocked) { ALocked->Unlock(); };
  const std::unique_ptr<IProductCollection, decltype(unlock)> locked(products.Get(), unlock);
  return DrawImage(products->GetIconListLarge(), AIndex);
}

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
