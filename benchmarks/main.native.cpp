// The benchmarks over a simulated machine:
//   benchmarks [NAME]      measures the figures whose names begin with NAME, or all
#include <malloc.h>
#include <sched.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "benchmarks/Allocations.native.h"
#include "benchmarks/DetailsPhase.native.h"
#include "benchmarks/Figures.h"
#include "benchmarks/LinkFiles.native.h"
#include "benchmarks/ListPhase.h"
#include "benchmarks/ServicingPackages.h"
#include "benchmarks/UninstallKeys.h"
#include "library/NativeRoot.h"
#include "library/uVarcolin.h"
#include "locations/uLocationUninstall.h"
#include "platform/Com.h"
#include "platform/Xml.h"
#include "platform/simulated/RegistryText.h"
#include "products/uItemUpdate.h"

namespace varcolin::benchmarks {

namespace {

/// Begins as a program does that has just been started: with fresh memory, none that an earlier measurement has warmed
/// or left gaps in, and with nothing of the machine in the processor's caches, which would hold a small one whole.
void BeginCold() {
  malloc_trim(0);
  constexpr std::size_t MoreThanAnyCache = std::size_t{256} << 20;
  const std::vector<std::byte> sweep(MoreThanAnyCache, std::byte{1});
  // read back as well, so that no compiler leaves the writing out
  if (std::ranges::count(sweep, std::byte{1}) != std::ssize(sweep)) throw std::logic_error("memory does not hold");
}

/// Keeps this thread, and the programs that it starts, on one processor while the object lives: both sides of a
/// comparison then have the same one, and neither pays for moving.
class TOneProcessor {
 public:
  TOneProcessor() {
    if (::sched_getaffinity(0, sizeof FAll, &FAll) != 0) return;
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(::sched_getcpu(), &one);
    FIsSet = ::sched_setaffinity(0, sizeof one, &one) == 0;
  }
  TOneProcessor(const TOneProcessor&) = delete;
  TOneProcessor& operator=(const TOneProcessor&) = delete;
  ~TOneProcessor() {
    if (FIsSet) ::sched_setaffinity(0, sizeof FAll, &FAll);
  }

 private:
  cpu_set_t FAll{};
  bool FIsSet = false;
};

/// A machine with the uninstall keys of a number of programs.
class TFilledMachine {
 public:
  explicit TFilledMachine(std::size_t APrograms) : FPrograms(APrograms) {
    // loaded as a machine's image is: keys that are written through the interface leave the simulation's log of changes
    // in the holes between them
    const std::u16string text = ExportOf(TUninstallKeys(APrograms));
    LoadRegistryText(std::as_bytes(std::span(text)), "export.reg", Machine().Registry());
  }

  [[nodiscard]] TSimulatedMachine& Machine() noexcept { return FInstalled.Machine(); }
  /// Reads the lists once from nothing and gives the time of it.
  [[nodiscard]] double ListSeconds() {
    const TListPhase phase(Machine().Facilities());
    BeginCold();
    const double seconds = SecondsOf([&] { phase.Run(); });
    CheckCount(phase.ProgramCount());
    return seconds;
  }
  /// A figure is worth nothing when the lists are not complete.
  void CheckCount(std::size_t AListed) const {
    if (AListed == FPrograms) return;
    throw std::runtime_error(std::to_string(AListed) + " of " + std::to_string(FPrograms) + " programs were listed");
  }

 private:
  std::size_t FPrograms;
  TInstalledMachine FInstalled{TSimulatedFacts{}};
};

/// The registry calls of the list phase, or of everything until the lists are there, against those of a bare walk.
template <std::size_t Programs, bool WithLog = false>
double DiscoveryCalls() {
  TFilledMachine machine(Programs);
  const TMachine facilities = machine.Machine().Facilities();
  TCountingRegistry bare(facilities.Registry);
  TBareWalk(facilities.Registry).Run(bare);
  TCountingRegistry counting(facilities.Registry);
  const TListPhase phase(WithRegistry(facilities, counting));
  if (WithLog) {
    phase.RunReader();
  } else {
    phase.Run();
  }
  machine.CheckCount(phase.ProgramCount());
  return static_cast<double>(counting.Calls()) / static_cast<double>(bare.Calls());
}

/// The time of 50,000 programs against that of ten times 5,000.
double DiscoveryGrowth() {
  constexpr int Rounds = 13;
  constexpr std::size_t Smaller = 5'000;
  constexpr int Factor = 10;
  const TOneProcessor processor;
  std::unique_ptr<TFilledMachine> machine;
  // one machine at a time has the suite installed, so both are made anew in each round
  const auto secondsOf = [&](std::size_t APrograms) {
    machine.reset();
    machine = std::make_unique<TFilledMachine>(APrograms);
    return machine->ListSeconds();
  };
  // ten of the smaller, not one: both then take as long, and what else the computer does weighs the same on both
  const auto ten = [&] {
    double seconds = 0;
    for (int time = 0; time < Factor; ++time) seconds += secondsOf(Smaller);
    return seconds;
  };
  const auto one = [&] { return secondsOf(Smaller * Factor); };
  return RatioOfMedians(Rounds, one, ten);
}

/// A folder of the computer that goes with the object.
class TTemporaryFolder {
 public:
  TTemporaryFolder()
      : FPath(std::filesystem::temp_directory_path() / ("varcolin-packages-" + std::to_string(::getpid()))) {
    std::filesystem::create_directory(FPath);
  }
  TTemporaryFolder(const TTemporaryFolder&) = delete;
  TTemporaryFolder& operator=(const TTemporaryFolder&) = delete;
  ~TTemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(FPath, error);
  }

  [[nodiscard]] std::filesystem::path Write(const std::string& AName, std::string_view AText) const {
    std::filesystem::path path = FPath / AName;
    std::ofstream file(path, std::ios::binary);
    if (!file.write(AText.data(), static_cast<std::streamsize>(AText.size())).flush()) {
      throw std::runtime_error("cannot write " + path.string());
    }
    return path;
  }

 private:
  std::filesystem::path FPath;
};

/// A machine with a number of servicing packages, their manifests on the disk as those of a machine image are.
class TServicedMachine {
 public:
  explicit TServicedMachine(std::size_t APackages) : FPackages(APackages) {
    TSimulatedMachine& machine = FInstalled.Machine();
    // in the order of their names, as exports have them
    std::map<std::u16string, std::size_t> packages;
    for (std::size_t index = 0; index < FPackages.Count(); ++index) packages.emplace(FPackages.CodeAt(index), index);
    for (const auto& [code, index] : packages) {
      std::u16string path(PackagesFolder);
      path.append(code).append(u".mum");
      const std::string manifest = FPackages.ManifestAt(index);
      machine.Files().AddHostFile(path, FFolder.Write(std::to_string(index), manifest), manifest.size());
      std::u16string key(PackagesKey);
      key.append(u"\\").append(code);
      auto& registry = machine.Registry();
      registry.SetTextAt(key, u"InstallClient", u"WindowsUpdateAgent");
      registry.SetTextAt(key, u"InstallName", code + u".mum");
      registry.SetTextAt(key, u"InstallLocation", u"\\\\?\\C:\\Windows\\SoftwareDistribution\\Download\\cab");
      for (const char16_t* const name : {u"CurrentState", u"InstallTimeHigh", u"InstallTimeLow", u"Visibility"}) {
        registry.SetDwordAt(key, name, 0x70);
      }
      registry.SetDwordAt(key + u"\\Owners", code, 0x70);
    }
  }

  /// Lists the updates once from nothing and gives the time of it.
  [[nodiscard]] double ListSeconds() {
    const TLibraryModules modules(FInstalled.Machine().Facilities());
    auto* const location = TLocationUninstall::Location(TTypeUninstallLocation::ulVistaUpdate);
    const double seconds = SecondsOf([&] { location->ReadLocation(); });
    const std::size_t listed = TItemUpdate::List().Count();
    if (listed == FPackages.UpdateCount()) return seconds;
    throw std::runtime_error(std::to_string(listed) + " of " + std::to_string(FPackages.UpdateCount()) +
                             " updates were listed");
  }
  /// Finds, reads and parses the same manifests, and nothing more.
  [[nodiscard]] double ParseSeconds() {
    const TMachine facilities = FInstalled.Machine().Facilities();
    const TComScope com(facilities.Com, ECom::Apartment);
    return SecondsOf([&] {
      std::vector<std::byte> data;
      std::u16string pattern(PackagesFolder);
      pattern.append(u"*.mum");
      TFindHandle walk;
      TFoundFile file;
      for (TWinError error = facilities.Files.FindFirst(pattern, walk, file); error == WinError::Success;
           error = facilities.Files.FindNext(walk, file)) {
        std::u16string path(PackagesFolder);
        path.append(file.Name);
        std::unique_ptr<IXmlCursor> root;
        if (facilities.Files.ReadWhole(path, SIZE_MAX, data) != WinError::Success ||
            facilities.Xml.Parse(data, root) != WinError::Success) {
          throw std::runtime_error("a manifest cannot be read");
        }
      }
    });
  }

 private:
  TServicingPackages FPackages;
  TTemporaryFolder FFolder;
  TInstalledMachine FInstalled{TSimulatedFacts{}};
};

double UpdatesList() {
  constexpr int Rounds = 9;
  constexpr std::size_t Packages = 5'000;
  TServicedMachine machine(Packages);
  return RatioOfMedians(
      Rounds, [&] { return machine.ListSeconds(); }, [&] { return machine.ParseSeconds(); });
}

double UpdatesGrowth() {
  constexpr int Rounds = 5;
  constexpr std::size_t Smaller = 500;
  constexpr int Factor = 10;
  std::unique_ptr<TServicedMachine> machine;
  const auto secondsOf = [&](std::size_t APackages) {
    machine.reset();
    machine = std::make_unique<TServicedMachine>(APackages);
    return machine->ListSeconds();
  };
  return RatioOfMedians(
             Rounds, [&] { return secondsOf(Smaller * Factor); }, [&] { return secondsOf(Smaller); }) /
         Factor;
}

/// A file of the temporary folder, removed in the end.
class TTemporaryFile {
 public:
  explicit TTemporaryFile(std::u16string_view AContent)
      : FPath(std::filesystem::temp_directory_path() / ("varcolin-export-" + std::to_string(::getpid()) + ".reg")) {
    std::ofstream file(FPath, std::ios::binary);
    file.write(reinterpret_cast<const char*>(AContent.data()),
               static_cast<std::streamsize>(AContent.size() * sizeof(char16_t)));
    if (!file.flush()) throw std::runtime_error("cannot write " + FPath.string());
  }
  TTemporaryFile(const TTemporaryFile&) = delete;
  TTemporaryFile& operator=(const TTemporaryFile&) = delete;
  ~TTemporaryFile() {
    std::error_code error;
    std::filesystem::remove(FPath, error);
  }

  [[nodiscard]] std::vector<std::byte> Read() const {
    std::vector<std::byte> data(std::filesystem::file_size(FPath));
    std::ifstream file(FPath, std::ios::binary);
    if (!file.read(reinterpret_cast<char*>(data.data()), static_cast<std::streamsize>(data.size()))) {
      throw std::runtime_error("cannot read " + FPath.string());
    }
    return data;
  }

 private:
  std::filesystem::path FPath;
};

double RegistryTextLoad() {
  constexpr int Rounds = 5;
  constexpr std::size_t Programs = 23'600;  // 70 MB
  const TTemporaryFile file(ExportOf(TUninstallKeys(Programs)));
  const auto load = [&] {
    TSimulatedMachine machine;
    BeginCold();
    return SecondsOf([&] { LoadRegistryText(file.Read(), "export.reg", machine.Registry()); });
  };
  const auto read = [&] {
    BeginCold();
    return SecondsOf([&] { static_cast<void>(file.Read()); });
  };
  return RatioOfMedians(Rounds, load, read);
}

/// Reads every property of every program and keeps the products, as a host that shows a list does.
std::vector<TInterfaceRef<IProduct>> ReadAllPrograms(IVarcolin& AManager) {
  constexpr std::int32_t PropertyCount = static_cast<std::int32_t>(TPropertyID::ParentDisplayName) + 1;
  TInterfaceRef<IProductCollection> programs;
  AManager.GetPrograms(programs.Receive());
  std::vector<TInterfaceRef<IProduct>> products(static_cast<std::size_t>(programs->GetCount()));
  TVariantValue value;
  for (std::size_t index = 0; index < products.size(); ++index) {
    programs->GetItem(static_cast<std::int32_t>(index), products[index].Receive());
    for (std::int32_t id = 0; id < PropertyCount; ++id) products[index]->GetProperty(id, value.Receive());
  }
  return products;
}

double ListMemory() {
  constexpr std::size_t Programs = 5'000;
  TFilledMachine machine(Programs);
  const TLibraryModules modules(machine.Machine().Facilities());
  IVarcolin& manager = *TVarcolin::Instance(VarcolinGuidText.data());
  std::size_t peak = 0;
  {
    // the machine's registry is filled before; the little that it allocates meanwhile is counted with the rest
    const TAllocationCount allocations;
    manager.Refresh();
    while (manager.GetState() != TVRCState::vrcsLoaded) std::this_thread::yield();
    machine.CheckCount(ReadAllPrograms(manager).size());
    peak = allocations.Peak();
  }
  manager.Stop();
  return static_cast<double>(peak) / Programs;
}

constexpr std::size_t LinkCount = 10'000;

/// Written once for all figures: making so many files takes longer than measuring.
const TLinkFiles& Links() {
  static const TLinkFiles files(LinkCount);
  return files;
}

/// The cost of one reader of all links against that of another.
template <class TFirst, class TSecond>
double RatioOfReaders(int ARounds, TFirst& AFirst, TSecond& ASecond) {
  constexpr std::size_t Parts = 4;
  constexpr std::size_t Count = LinkCount / Parts;
  return RatioByTurns(
      ARounds, Parts, [&](std::size_t APart) { return AFirst.Seconds(APart * Count, Count); },
      [&](std::size_t APart) { return ASecond.Seconds(APart * Count, Count); });
}

double LinkParse() {
  constexpr int Rounds = 25;
  TLinkParsing parsing(Links());
  TLinkReading reading(Links());
  return RatioOfReaders(Rounds, parsing, reading);
}

double LinkParseLiblnk() {
  constexpr int Rounds = 25;
  const TOneProcessor processor;
  TLinkParsing parsing(Links());
  TLiblnkReading liblnk(Links());
  return RatioOfReaders(Rounds, parsing, liblnk);
}

template <std::size_t Programs>
double DetailsPhase() {
  constexpr double MicrosecondsPerSecond = 1e6;
  return DetailsSeconds(Programs) * MicrosecondsPerSecond;
}

double DetailsGrowth() {
  return RatioOfMedians(
      5, [] { return DetailsSeconds(5'000); }, [] { return DetailsSeconds(500); });
}

constexpr TFigure Figures[] = {
    {"discovery_calls/500", EUnit::Ratio, 2.0, &DiscoveryCalls<500>},
    {"discovery_calls/5000", EUnit::Ratio, 2.0, &DiscoveryCalls<5'000>},
    {"discovery_calls/50000", EUnit::Ratio, 2.0, &DiscoveryCalls<50'000>},
    {"discovery_calls_with_log/5000", EUnit::Ratio, std::nullopt, &DiscoveryCalls<5'000, true>},
    {"discovery_growth/50000", EUnit::Ratio, 1.1, &DiscoveryGrowth},
    {"registry_text_load/70MB", EUnit::Ratio, std::nullopt, &RegistryTextLoad},
    {"updates_list/5000", EUnit::Ratio, 1.3, &UpdatesList},
    {"updates_growth/5000", EUnit::Ratio, std::nullopt, &UpdatesGrowth},
    {"link_parse/10000", EUnit::Ratio, 1.5, &LinkParse},
    {"link_parse_liblnk/10000", EUnit::Ratio, 0.2, &LinkParseLiblnk},
    {"details_phase/500", EUnit::Microseconds, std::nullopt, &DetailsPhase<500>},
    {"details_phase/5000", EUnit::Microseconds, std::nullopt, &DetailsPhase<5'000>},
    {"details_growth/5000", EUnit::Ratio, 1.3, &DetailsGrowth},
    {"list_memory/5000", EUnit::Bytes, 8192, &ListMemory},
};

}  // namespace

}  // namespace varcolin::benchmarks

int main(int AArgumentCount, char** AArguments) {
  using namespace varcolin::benchmarks;
  if (AArgumentCount > 2) {
    std::fputs("usage: benchmarks [NAME]\n", stderr);
    return 2;
  }
  try {
    return RunFigures(Figures, AArgumentCount == 2 ? AArguments[1] : "");
  } catch (const std::exception& error) {
    std::fprintf(stderr, "benchmarks: %s\n", error.what());
    return 2;
  }
}
