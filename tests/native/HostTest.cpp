// The host as a person meets it: the built program, its output, its exit codes.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "common/LinkBuilder.h"
#include "host/Cells.h"
#include "host/Text.h"
#include "native/HostProgram.h"

namespace varcolin::host {
namespace {

using testing::Quoted;
using testing::RunHost;
using testing::RunShell;
using testing::TArguments;
using testing::TOutcome;
using testing::TTemporaryFolder;

/// What the host prints when all is well.
std::string OutputOf(const TArguments& AArguments) {
  const TOutcome outcome = RunHost(AArguments);
  EXPECT_EQ(outcome.ExitCode, 0);
  EXPECT_EQ(outcome.Error, "");
  return outcome.Output;
}

/// The same about the sample machine.
std::string SampleOutputOf(TArguments AArguments) {
  AArguments.insert(AArguments.end(), {"--machine", SAMPLE_MACHINE});
  return OutputOf(AArguments);
}

nlohmann::json ListOf(const std::string& AKind, const TArguments& AMore = {}) {
  TArguments arguments{AKind, "--json"};
  arguments.insert(arguments.end(), AMore.begin(), AMore.end());
  return nlohmann::json::parse(SampleOutputOf(arguments)).at(AKind);
}

void ExpectTexts(const std::string& AOutput, std::initializer_list<const char*> ATexts) {
  for (const char* text : ATexts) EXPECT_NE(AOutput.find(text), std::string::npos) << text << " is not in " << AOutput;
}

nlohmann::json ListPrograms(TArguments AMore = {}) { return ListOf("programs", std::move(AMore)); }

const nlohmann::json* FindProgram(const nlohmann::json& APrograms, const std::string& AName) {
  const auto found = std::ranges::find_if(APrograms, [&](const auto& AItem) { return AItem["displayName"] == AName; });
  return found == APrograms.end() ? nullptr : &*found;
}

void ExpectSafe(std::string_view AText) {
  while (!AText.empty()) {
    const char32_t character = NextCharacter(AText);
    EXPECT_TRUE(character == U'\n' || !IsSteering(character)) << static_cast<unsigned>(character);
  }
}

TEST(Host, ListsTheSampleMachine) {
  const nlohmann::json programs = ListPrograms();
  EXPECT_GE(programs.size(), 40U);
  const nlohmann::json* studio = FindProgram(programs, "Tarnhelm Image Studio 4.2");
  ASSERT_NE(studio, nullptr);
  EXPECT_EQ((*studio)["version"], "4.2.1");
  EXPECT_EQ((*studio)["publisher"], "Oakmere Visual Works");
  EXPECT_EQ((*studio)["installDate"], "2012-06-12T18:22:05.000");
  EXPECT_EQ((*studio)["estimatedSize"], 182340 * 1024);
  EXPECT_EQ((*studio)["registeredCompany"], "Mara & Daughters");
  EXPECT_EQ((*studio)["rating"], "trustworthy");
  EXPECT_EQ((*studio)["usage"], "rarely");
  EXPECT_TRUE((*studio)["lastUsedDate"].is_null());

  // every kind of entry that a broken neighbour or a rule of its own must not hide
  for (const char* name :
       {"Oddlength Organizer", "Unterminated Utility", "Embedded Editor", "%s%s%n%x {0} %1!s! $(PATH) %PATH% %.9999d",
        "..\\..\\..\\Windows\\System32\\config", "Mistyped Manager", "Ouroboros Optimizer", "Whinchat Portable",
        "Lindqvist Time Sheets", "Rookery Tax Assistant 2011", "Nuthatch Recipe Box", "Wexcombe Scanner Suite",
        "桜川 かんばん管理 プロフェッショナル版", "Бережок: учёт и склад", "نخلة لتحرير النصوص", "Brückner Fahrplan 98",
        "Kestrel Archiver 2.5", "Kestrel Archiver 2.6 (x64)"}) {
    EXPECT_NE(FindProgram(programs, name), nullptr) << name;
  }
  for (const auto& program : programs) {
    const std::string name = program["displayName"];
    EXPECT_NE(name, "");
    for (const char* hidden : {"Never listed", "Connection Broker", "Quernstone Compiler", "KB2999", "Service Pack 1",
                               "Backup Desk Service", "Backup Desk Patch"}) {
      EXPECT_EQ(name.find(hidden), std::string::npos) << name;
    }
  }
  // hidden keys that lend what they know to a visible program, by product code and by name
  EXPECT_EQ((*FindProgram(programs, "Ashgrove Backup Desk"))["comments"], "Scheduled backups for the whole house");
  EXPECT_EQ((*FindProgram(programs, "Pinfold Reader 3.4"))["supportTelephone"], "+46 8 505 510 33");
  EXPECT_EQ((*FindProgram(programs, "Gargantua Game Library"))["estimatedSize"], 3221225472);
  EXPECT_EQ((*FindProgram(programs, "Cinderpath Terminal"))["version"], "5.1");
  // executables that tell what their programs have not registered: of a shortcut, beside one, started at logon
  const nlohmann::json& solitaire = *FindProgram(programs, "Hexham Solitaire Collection");
  EXPECT_EQ(solitaire["version"], "2.4.0.7");
  EXPECT_EQ(solitaire["installLocation"], "C:\\Program Files (x86)\\Hexham Games\\Solitaire\\");
  EXPECT_EQ((*FindProgram(programs, "Sundew: Lanterns of the Fen"))["version"], "1.3.0");
  EXPECT_EQ((*FindProgram(programs, "Sparrowhawk Codec Pack 8.8.0"))["publisher"], "Sparrowhawk Media Ltd.");
  EXPECT_EQ((*FindProgram(programs, "Larkspur Office Suite 2012"))["actions"],
            nlohmann::json({"uninstall", "modify", "repair", "removeFromRegistry"}));
}

TEST(Host, ListsTheUpdatesOfTheSampleMachine) {
  const nlohmann::json updates = ListOf("updates");
  // those of servicing packages; the parts of a package, features, and what is broken or not there yet are none
  std::vector<std::string> packages;
  for (const auto& update : updates) {
    if (update["updateId"].get<std::string>().starts_with("Package_")) packages.push_back(update["displayName"]);
  }
  EXPECT_EQ(packages,
            (std::vector<std::string>{
                "Security Update for Microsoft Windows (KB2998801)", "Hotfix for Microsoft Windows (KB2998802)",
                "Quarterly rollup for the font cache", "Service Pack for Microsoft Windows (KB2998804)",
                "Critical Update for Microsoft Windows (KB2998805)", "Обновление раскладок & шрифтов — «Север»"}));
  const nlohmann::json* hotfix = FindProgram(updates, "Hotfix for Microsoft Windows (KB2998802)");
  ASSERT_NE(hotfix, nullptr);
  EXPECT_EQ((*hotfix)["updateId"], "Package_for_KB2998802");
  EXPECT_EQ((*hotfix)["releaseType"], "hotfix");
  EXPECT_EQ((*hotfix)["parentDisplayName"], "Windows 7");
  EXPECT_EQ((*hotfix)["installDate"], "2012-07-02T19:40:05.000");
  EXPECT_EQ((*hotfix)["actions"], nlohmann::json({"uninstall"}));
  EXPECT_EQ((*FindProgram(updates, "Service Pack for Microsoft Windows (KB2998804)"))["actions"],
            nlohmann::json::array());
  EXPECT_NE(FindProgram(updates, "Security Update for Windows (KB2999902)"), nullptr) << "those of the registry too";

  EXPECT_EQ(ListOf("updates", {"--filter", "СЕВЕР", "--sort", "date"}).size(), 1U);
  const TOutcome table = RunShell("COLUMNS=80 \"$HOST\" updates --machine " + Quoted(SAMPLE_MACHINE));
  EXPECT_EQ(table.ExitCode, 0) << table.Error;
  EXPECT_NE(table.Output.find("Security update"), std::string::npos) << table.Output;
  const TOutcome none = RunHost({"updates", "--machine", SAMPLE_MACHINE, "--filter", "no such update"});
  EXPECT_EQ(none.Error, "varcolin: no update matches \"no such update\"\n");

  ExpectTexts(SampleOutputOf({"show", "package_for_kb2998801"}),
              {"Security Update for Microsoft Windows (KB2998801)", "Security update", "Windows 7"});
  const auto shown = nlohmann::json::parse(SampleOutputOf({"show", "--json", "font cache"}));
  EXPECT_EQ(shown.at("updates").at(0).at("releaseType"), "updateRollup");
}

TEST(Host, UsesTheBuiltInSampleAndSaysSo) {
  const TOutcome outcome = RunHost({"programs", "--json"});
  EXPECT_EQ(outcome.ExitCode, 0);
  EXPECT_EQ(std::ranges::count(outcome.Error, '\n'), 1);
  EXPECT_NE(outcome.Error.find("sample machine"), std::string::npos) << outcome.Error;
  EXPECT_EQ(nlohmann::json::parse(outcome.Output).at("programs"), ListPrograms());
}

TEST(Host, FiltersAndSorts) {
  const nlohmann::json bySize = ListPrograms({"--sort", "size"});
  EXPECT_TRUE(std::ranges::is_sorted(bySize, std::greater(), [](const auto& AItem) {
    return std::max<std::int64_t>(AItem["estimatedSize"].template get<std::int64_t>(), 0);
  }));
  const nlohmann::json byDate = ListPrograms({"--sort", "date"});
  EXPECT_TRUE(std::ranges::is_sorted(byDate, std::greater(), [](const auto& AItem) {
    return AItem["installDate"].is_null() ? std::string() : AItem["installDate"].template get<std::string>();
  }));
  const nlohmann::json filtered = ListPrograms({"--filter", "бЕРЕЖОК"});
  ASSERT_EQ(filtered.size(), 1U);
  EXPECT_EQ(filtered[0]["publisher"], "ООО «Бережок»");
  EXPECT_TRUE(ListPrograms({"--filter", "no such program"}).empty());
}

TEST(Host, PrintsTablesThatFitAndSteerNothing) {
  for (const char* width : {"20", "47", "80", "200"}) {
    const TOutcome outcome =
        RunShell("COLUMNS=" + std::string(width) + " \"$HOST\" programs --machine " + Quoted(SAMPLE_MACHINE));
    EXPECT_EQ(outcome.ExitCode, 0);
    ExpectSafe(outcome.Output);
    std::istringstream lines(outcome.Output);
    std::string line;
    while (std::getline(lines, line)) EXPECT_LE(TextCells(line), std::stoul(width)) << line;
  }
}

struct TAct {
  const char* Arguments;
  int ExitCode;
  const char* Output;  // what it begins with
  const char* Error;   // what it contains; nothing: it is empty
};

TEST(Host, RunsTheCommandsOfPrograms) {
  const TAct acts[] = {
      {"uninstall dunlin --yes", 0,
       "Dunlin Download Desk: \"C:\\Program Files (x86)\\Dunlin\\uninst.exe\"\n"
       "Dunlin Download Desk is no longer listed.\n",
       ""},
      {"uninstall dunlin", 1, "Dunlin Download Desk: \"C:\\Program Files (x86)\\Dunlin\\uninst.exe\"\n",
       "--yes runs it without a question"},
      {"uninstall dunlin <<<no", 1, "Dunlin", "nothing was run"},
      {"uninstall {d72a95c8-1e4b-4f30-a6d9-2b8c0e71f543} <<<Y", 0,
       "Pinfold Reader 3.4: msiexec.exe /x {D72A95C8-1E4B-4F30-A6D9-2B8C0E71F543}\n"
       "Pinfold Reader 3.4 is no longer listed.\n",
       "Run it? [y/N] "},
      {"uninstall tarnhelm --yes", 1,
       "Tarnhelm Image Studio 4.2: \"C:\\Program Files\\Tarnhelm Studio\\unins000.exe\"\n"
       "Tarnhelm Image Studio 4.2 is still listed.\n",
       "Error execute command: "},
      {"uninstall ember --yes", 1, "Ember Browser: ", "--allow-user-command"},
      {"uninstall ember --yes --allow-user-command", 1, "Ember Browser: ", "Error execute command: "},
      {"uninstall kestrel --yes", 1, "", "names 2 products"},
      {"uninstall whinchat --yes", 1, "", "it offers removeFromRegistry"},
      {"uninstall dunlin --quiet <<<n", 1, "Dunlin Download Desk: \"C:\\Program Files (x86)\\Dunlin\\uninst.exe\" /S\n",
       "nothing was run"},
      {"repair pinfold <<<n", 1, "Pinfold Reader 3.4: msiexec.exe /fa {D72A95C8", "nothing was run"},
      {"modify pinfold <<<n", 1, "Pinfold Reader 3.4: msiexec.exe /i {D72A95C8", "nothing was run"},
      {"modify pinfold --quiet", 2, "", "only uninstall can be quiet"},
      {"forget whinchat", 0, "Whinchat Portable was taken off the library's list; its registry entry stays.\n", ""},
      {"features", 0, "Windows was asked", ""},
  };
  for (const TAct& act : acts) {
    SCOPED_TRACE(act.Arguments);
    const std::string arguments = act.Arguments;
    const auto input = std::min(arguments.find("<<<"), arguments.size());
    const TOutcome outcome = RunShell("\"$HOST\" " + arguments.substr(0, input) + " --machine " +
                                      Quoted(SAMPLE_MACHINE) + ' ' + arguments.substr(input));
    EXPECT_EQ(outcome.ExitCode, act.ExitCode);
    EXPECT_EQ(outcome.Output.substr(0, std::string_view(act.Output).size()), act.Output);
    if (*act.Error == '\0') {
      EXPECT_EQ(outcome.Error, "");
    } else {
      EXPECT_NE(outcome.Error.find(act.Error), std::string::npos) << outcome.Error;
    }
    ExpectSafe(outcome.Output + outcome.Error);
  }
}

TEST(Host, ShowsOneProgram) {
  ExpectTexts(SampleOutputOf({"show", "tarnhelm"}),
              {"Tarnhelm Image Studio 4.2", "2012-06-12", "178.1 MB", "uninstallQuiet"});
  const auto byGuid =
      nlohmann::json::parse(SampleOutputOf({"show", "--json", "{4c7a1f93-e8b2-4d06-9a35-1bd0f6c2e874}"}));
  EXPECT_EQ(byGuid.at("programs").at(0).at("displayName"), "Larkspur Office Suite 2012");

  const TOutcome ambiguous = RunHost({"show", "--machine", SAMPLE_MACHINE, "kestrel"});
  EXPECT_EQ(ambiguous.ExitCode, 1);
  EXPECT_EQ(ambiguous.Output, "");
  ExpectTexts(ambiguous.Error, {"Kestrel Archiver 2.5", "Kestrel Archiver 2.6 (x64)"});
  const TOutcome missing = RunHost({"show", "--machine", SAMPLE_MACHINE, "\x1B[31mnothing"});
  EXPECT_EQ(missing.ExitCode, 1);
  ExpectSafe(missing.Error);
}

TEST(Host, TellsWhatIsWrongWithAnImage) {
  const TTemporaryFolder image;
  image.Put("registry/a.reg",
            "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\X]\n\"a\"=oops\n");
  const TTemporaryFolder description;
  description.Put("machine.json", "{\n\"windows\": [}\n");
  struct TCase {
    TArguments Arguments;
    std::vector<std::string> Said;
  };
  for (const TCase& test : {TCase{{"programs", "--machine", image.Name()}, {"a.reg", "4"}},
                            TCase{{"programs", "--machine", description.Name()}, {"machine.json", "2"}},
                            TCase{{"log", "--machine", image.Name() + "/missing"}, {"missing"}},
                            TCase{{"programs", "--sort", "colour"}, {}}, TCase{{"programs", "extra"}, {}},
                            TCase{{"show"}, {}}, TCase{{"remove"}, {}}, TCase{{}, {}}}) {
    const TOutcome outcome = RunHost(test.Arguments);
    EXPECT_EQ(outcome.ExitCode, 2) << outcome.Error;
    EXPECT_EQ(outcome.Output, "");
    EXPECT_EQ(std::ranges::count(outcome.Error, '\n'), 1) << outcome.Error;
    for (const std::string& text : test.Said) EXPECT_NE(outcome.Error.find(text), std::string::npos) << outcome.Error;
  }
}

TEST(Host, ListsAnEmptyMachine) {
  const TTemporaryFolder image;
  EXPECT_EQ(OutputOf({"programs", "--json", "--machine", image.Name()}), "{\"programs\":[]}\n");
}

TEST(Host, ReportsItsVersionAndUsage) {
  EXPECT_TRUE(OutputOf({"--version"}).starts_with("varcolin "));
  ExpectTexts(OutputOf({"programs", "--help"}), {"--sort"});
}

TEST(Host, PrintsTheLog) {
  const std::string output = SampleOutputOf({"log"});
  EXPECT_TRUE(output.substr(0, output.find('\n')).ends_with("\\Logs\\Varcolin.log")) << output;
  ExpectTexts(output, {"Add Program: Ember Browser ()\n"});
  ExpectSafe(output);
}

std::string AsString(const testing::TBytes& ABytes) {
  return {reinterpret_cast<const char*>(ABytes.data()), ABytes.size()};
}

TEST(Host, ShowsWhatStandsInALinkFile) {
  testing::TLinkBuilder builder;
  builder.IDList(testing::MakeIDList(u"C:\\Tools\\app.exe"))
      .LinkInfo(testing::MakeLinkInfo({.Volume = testing::MakeVolume(u"System"), .BasePath = u"C:\\Tools\\app.exe"}))
      .Name(u"What it is for")
      .WorkingDir(u"C:\\Work")
      .Arguments(u"/run")
      .IconLocation(u"%Tools%\\app.ico")
      .Block(0xA0000009, testing::TBytes(12));
  builder.Times[1] = 125911584000000000;
  builder.IconIndex = -3;
  builder.ShowCommand = 7;
  builder.HotKey = 0x641;
  const TTemporaryFolder folder;
  folder.Put("n\u00E4me.LNK", AsString(builder.Build()));
  const std::string file = folder.Name() + "/n\u00E4me.LNK";

  auto document = nlohmann::json::parse(OutputOf({"link", file, "--json"}));
  const auto sections = document["sections"];
  document.erase("sections");
  EXPECT_EQ(document, nlohmann::json::parse(R"({"pathName": "C:\\Tools\\app.exe", "arguments": "/run",
      "description": "What it is for", "workingDirectory": "C:\\Work", "iconLocation": "%Tools%\\app.ico",
      "iconIndex": -3, "showCmd": 7, "hotKey": 1601})"));
  std::map<std::string, nlohmann::json> fields;
  for (const auto& section : sections) fields[section.at("name")] = section.at("fields");
  EXPECT_EQ(fields["header"]["accessTime"].get<std::string>().substr(0, 3), "200") << "in the machine's time zone";
  EXPECT_TRUE(fields["header"]["creationTime"].is_null());
  EXPECT_EQ(fields["linkTargetIDList"]["displayName"], "app.exe");
  EXPECT_EQ(fields["linkInfo"]["driveVolumeLabel"], "System");
  EXPECT_EQ(fields["stringData"]["arguments"], "/run");
  EXPECT_EQ(fields["propertyStoreProps"]["size"], 20);

  ExpectTexts(OutputOf({"link", file}),
              {"Target:         C:\\Tools\\app.exe\n", "\nHeader\n", "\nLink target ID list\n", "\nLink info\n",
               "\nString data\n", "\nProperty store props\n", "  Drive serial number:      0x1234ABCD\n"});
}

TEST(Host, KeepsTheTerminalAndTheDocumentSafeFromLinks) {
  const std::u16string hostile = u"\u001B[2J\u202E\u0000\"\\\xD800\uFEFF\n" + std::u16string(1, 0xDC00) + u"end";
  const TTemporaryFolder folder;
  folder.Put("a.lnk", AsString(testing::TLinkBuilder()
                                   .Arguments(hostile)
                                   .Name(hostile)
                                   .TextBlock(0xA0000001, u"\u001B]0;x\u0007", hostile)
                                   .Build()));
  ExpectSafe(OutputOf({"link", folder.Name() + "/a.lnk"}));
  const std::string json = OutputOf({"link", "--json", folder.Name() + "/a.lnk"});
  ExpectSafe(json);
  EXPECT_TRUE(nlohmann::json::parse(json)["arguments"].get<std::string>().starts_with("\x1B[2J"));
}

TEST(Host, RefusesWhatIsNoLink) {
  const TTemporaryFolder folder;
  folder.Put("broken.lnk", "L\x01garbage");
  folder.Put("huge.lnk", std::string(6 << 20, 'L'));
  folder.Put("note.txt", "a text");
  const std::string path = folder.Name() + "/";
  const std::pair<TArguments, std::string> cases[] = {
      {{"link", path + "broken.lnk"}, "Incorrect file size or format data. (" + path + "broken.lnk)"},
      {{"link", "--json", path + "huge.lnk"}, "Incorrect file size or format data. (" + path + "huge.lnk)"},
      {{"link", path + "note.txt"}, "Invalid file extension \".txt\", expected \".lnk\" (" + path + "note.txt)."},
      {{"link", path + "none.lnk"}, "there is no file " + path + "none.lnk"},
      {{"link", path}, "there is no file " + path},
  };
  for (const auto& [arguments, message] : cases) {
    const TOutcome outcome = RunHost(arguments);
    EXPECT_EQ(outcome.ExitCode, 1);
    EXPECT_EQ(outcome.Output, "");
    EXPECT_EQ(outcome.Error, "varcolin: " + message + "\n");
  }
  EXPECT_EQ(RunHost({"link"}).ExitCode, 2);
}

TEST(Host, RefreshesTheShellsCacheToItsEnd) {
  const std::string output = SampleOutputOf({"refresh-cache"});
  ExpectTexts(output, {"Begin update system ARP Cache.\n"});
  EXPECT_TRUE(output.ends_with("End update system ARP Cache.\n")) << output;
}

TEST(Host, EndsQuietlyOrLoudlyWhenOutputFails) {
  const TOutcome closed = RunShell("\"$HOST\" programs --json --machine " + Quoted(SAMPLE_MACHINE) + " | true");
  EXPECT_EQ(closed.Error, "");
  EXPECT_EQ(closed.ExitCode, 0);
  const TOutcome full = RunShell("\"$HOST\" programs --machine " + Quoted(SAMPLE_MACHINE) + " >/dev/full");
  EXPECT_EQ(full.ExitCode, 1);
  EXPECT_NE(full.Error.find("cannot be written"), std::string::npos) << full.Error;
}

TEST(Host, WatchesUntilInterrupted) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDERR_FILENO);
    close(ends[0]);
    execl(VARCOLIN_EXE, VARCOLIN_EXE, "watch", "--machine", SAMPLE_MACHINE, nullptr);
    _exit(127);
  }
  ASSERT_GT(child, 0);
  close(ends[1]);
  // it says when it watches; from then on an interrupt ends it in good order
  std::string said;
  for (char character = 0; said.find('\n') == std::string::npos && read(ends[0], &character, 1) == 1;)
    said += character;
  EXPECT_NE(said.find("watching"), std::string::npos) << said;
  kill(child, SIGINT);
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
  close(ends[0]);
}

}  // namespace
}  // namespace varcolin::host
