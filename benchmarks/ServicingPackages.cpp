#include "benchmarks/ServicingPackages.h"

#include <algorithm>

#include "support/uText.h"

namespace varcolin::benchmarks {

namespace {

std::string Identity(const std::string& AName) {
  return "<assemblyIdentity name=\"" + AName +
         "\" version=\"6.1.1.0\" language=\"neutral\" processorArchitecture=\"amd64\" "
         "publicKeyToken=\"7c1e5a90b4d2f386\" buildType=\"release\" />\r\n";
}

}  // namespace

std::string TServicingPackages::NameAt(std::size_t AIndex) {
  const std::string article = "KB" + std::to_string(2'000'000 + AIndex / PerUpdate);
  const std::size_t part = AIndex % PerUpdate;
  return part == 0 ? "Package_for_" + article : "Package_" + std::to_string(part) + "_for_" + article;
}

std::u16string TServicingPackages::CodeAt(std::size_t AIndex) const {
  return FromUtf8(NameAt(AIndex) + "~7c1e5a90b4d2f386~amd64~~6.1.1.0");
}

std::string TServicingPackages::ManifestAt(std::size_t AIndex) const {
  const std::string number = std::to_string(2'000'000 + AIndex / PerUpdate);
  std::string text =
      "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<assembly xmlns=\"urn:schemas-microsoft-com:asm.v3\" "
      "manifestVersion=\"1.0\" description=\"Fix for KB" +
      number +
      "\" displayName=\"default\" company=\"Windows Servicing\" copyright=\"Windows Servicing\" "
      "supportInformation=\"http://support.example/?kbid=" +
      number + "\" creationTimeStamp=\"2012-06-01T08:00:00Z\" lastUpdateTimeStamp=\"2012-06-01T08:00:00Z\">\r\n  " +
      Identity(NameAt(AIndex)) + "  <package identifier=\"KB" + number +
      "\" applicabilityEvaluation=\"deep\" releaseType=\"Hotfix\" restart=\"possible\">\r\n"
      "    <parent buildCompare=\"EQ\" serviceCompare=\"EQ\" integrate=\"separate\" disposition=\"detect\">\r\n";
  constexpr int Parents = 14;
  for (int parent = 0; parent < Parents; ++parent) {
    text += "      " + Identity("Windows-Client-Feature-" + std::to_string(parent) + "-Package");
  }
  text += "    </parent>\r\n";
  const auto update = [&](const std::string& AContent) {
    text += "    <update name=\"" + number + "_neutral_PACKAGE\">\r\n" + AContent + "    </update>\r\n";
  };
  if (AIndex % PerUpdate == 0) {
    const std::size_t end = std::min(AIndex + PerUpdate, FCount);
    for (std::size_t part = AIndex + 1; part < end; ++part) {
      update("      <package integrate=\"hidden\">\r\n        " + Identity(NameAt(part)) + "      </package>\r\n");
    }
  } else {
    constexpr int Components = 8;
    for (int component = 0; component < Components; ++component) {
      update("      <component>\r\n        " + Identity("component-" + std::to_string(component)) +
             "      </component>\r\n");
    }
  }
  return text + "  </package>\r\n</assembly>\r\n";
}

}  // namespace varcolin::benchmarks
