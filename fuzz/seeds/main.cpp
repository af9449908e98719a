// Writes the seeds that are built rather than kept as files: write_seeds FOLDER fills FOLDER/link.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "common/LinkKinds.h"

namespace {

void Write(const std::filesystem::path& APath, const varcolin::testing::TBytes& AData) {
  std::ofstream file(APath, std::ios::binary);
  file.write(reinterpret_cast<const char*>(AData.data()), static_cast<std::streamsize>(AData.size()));
  if (!file.flush()) throw std::runtime_error("cannot write " + APath.string());
}

}  // namespace

int main(int ACount, char** AArguments) {
  if (ACount != 2) {
    std::fputs("usage: write_seeds FOLDER\n", stderr);
    return 2;
  }
  try {
    const std::filesystem::path folder = std::filesystem::path(AArguments[1]) / "link";
    std::filesystem::create_directories(folder);
    for (std::size_t kind = 0; kind < varcolin::testing::LinkKindCount; ++kind) {
      Write(folder / ("kind-" + std::to_string(kind)), varcolin::testing::MakeRealLink(kind));
    }
    Write(folder / "header", varcolin::testing::TLinkBuilder().Build());
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "write_seeds: %s\n", error.what());
    return 1;
  }
}
