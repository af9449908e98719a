// "TolvaneHelper.dll": how far files and publishers are trusted, by the list "TolvaneRatings.txt" beside it. The list
// is read once, when the library is first used; without it nothing is known.
#include "intf/intf_Tolvane.h"
#include "platform/Files.h"
#include "platform/Modules.h"
#include "siblings/RatingList.h"
#include "siblings/SiblingLibrary.h"
#include "support/uInterfacedObject.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

/// No list of this kind comes near it, in bytes.
constexpr std::size_t ListLimit = 16 << 20;

TRatingList ReadRatings(const TMachine& AMachine) {
  std::u16string path;
  std::vector<std::byte> data;
  if (AMachine.Modules.GetOwnPath(path) != WinError::Success) return {};
  path = std::u16string(ExtractFilePath(path)) + u"TolvaneRatings.txt";
  if (AMachine.Files.ReadWhole(path, ListLimit, data) != WinError::Success) return {};
  return TRatingList(std::string_view(reinterpret_cast<const char*>(data.data()), data.size()));
}

class TTolvane final : public TInterfacedObject<ITolvane> {
 public:
  explicit TTolvane(TRatingList ARatings) : FRatings(std::move(ARatings)) {}

  TSoftwareRating VARCOLIN_CALL GetFileRating(const char16_t* APath) override {
    return Guarded(TSoftwareRating::stUnknown, [&] { return FRatings.FileRating(TextOf(APath)); });
  }

  TSoftwareRating VARCOLIN_CALL GetPublisherRating(const char16_t* AName) override {
    return Guarded(TSoftwareRating::stUnknown, [&] { return FRatings.PublisherRating(TextOf(AName)); });
  }

 private:
  TRatingList FRatings;
};

class TTolvaneLibrary final : public TSiblingLibrary {
 public:
  explicit TTolvaneLibrary(const TMachine& AMachine)
      : FService(MakeObject<TTolvane, ITolvane>(ReadRatings(AMachine))) {}

  void* FindInterface(std::u16string_view ARequest) override {
    return IsRequestFor(ARequest, ITolvane::IID) ? FService.Get() : nullptr;
  }

 private:
  TInterfaceRef<ITolvane> FService;
};

}  // namespace

std::unique_ptr<TSiblingLibrary> MakeTolvaneLibrary(const TMachine& AMachine) {
  return std::make_unique<TTolvaneLibrary>(AMachine);
}

}  // namespace varcolin
