// varcolin: the programs and updates of a Windows machine, listed and removed.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <sstream>

#include "host/Cells.h"
#include "host/Commands.h"
#include "host/HostError.h"
#include "host/Library.h"
#include "host/Terminal.h"

namespace varcolin::host {

namespace {

/// All that the command line can say.
struct TCommandLine {
  TListOptions Programs;
  TListOptions Updates;
  TShowOptions Show;
  TIconOptions Icon;
  TActOptions Act;
  TForgetOptions Forget;
  TMachineImage Features;
  TMachineImage RefreshCache;
  TMachineImage Watch;
  TMachineImage Log;
  TLinkOptions Link;
};

constexpr std::array<std::pair<std::string_view, ESortOrder>, 4> SortOrders{{{"name", ESortOrder::Name},
                                                                             {"size", ESortOrder::Size},
                                                                             {"date", ESortOrder::Date},
                                                                             {"publisher", ESortOrder::Publisher}}};

std::optional<ESortOrder> SortOrderOf(std::string_view AName) {
  const auto found = std::ranges::find(SortOrders, AName, [](const auto& AOrder) { return AOrder.first; });
  return found == SortOrders.end() ? std::nullopt : std::optional(found->second);
}

void AddMachineOption(CLI::App& ACommand, TMachineImage& AMachine) {
  if (!TLibrary::HasMachineImages()) return;
  ACommand
      .add_option("--machine", AMachine, "Machine image to read (a folder); the built-in sample machine without it")
      ->type_name("IMAGE");
}

void AddProgramArgument(CLI::App& ACommand, std::string& ANameOrGuid) {
  ACommand.add_option("program", ANameOrGuid, "Its name, a part of its name, or its GUID")
      ->required()
      ->type_name("NAME|GUID");
}

void AddActs(CLI::App& AApp, TCommandLine& ALine) {
  struct TAct {
    const char* Name;
    const char* Text;
    EAct Kind;
  };
  for (const TAct& act : {TAct{"uninstall", "Run a program's uninstaller", EAct::Uninstall},
                          TAct{"modify", "Run what changes a program's parts", EAct::Modify},
                          TAct{"repair", "Run what repairs a program", EAct::Repair}}) {
    CLI::App* command = AApp.add_subcommand(act.Name, act.Text);
    AddMachineOption(*command, ALine.Act.Machine);
    AddProgramArgument(*command, ALine.Act.NameOrGuid);
    command->add_flag("--quiet", ALine.Act.Quiet, "Without a user interface; uninstall alone can be so");
    command->add_flag("--yes", ALine.Act.Yes, "Run the command without a question");
    command->add_flag("--allow-user-command", ALine.Act.AllowUserCommand,
                      "With administrator rights: run also what the user's part of the registry names");
    command->callback([&ALine, kind = act.Kind] { ALine.Act.Kind = kind; });
  }
  CLI::App* forget = AApp.add_subcommand("forget", "Take a dead entry off the list; its registry entry stays");
  AddMachineOption(*forget, ALine.Forget.Machine);
  AddProgramArgument(*forget, ALine.Forget.NameOrGuid);
  CLI::App* features = AApp.add_subcommand("features", "Open the dialog for the optional features of Windows");
  AddMachineOption(*features, ALine.Features);
  CLI::App* refresh = AApp.add_subcommand("refresh-cache", "Make the shell renew what it keeps about the programs");
  AddMachineOption(*refresh, ALine.RefreshCache);
}

void AddListCommand(CLI::App& AApp, const std::string& AName, const std::string& ADescription, TListOptions& AOptions) {
  CLI::App* list = AApp.add_subcommand(AName, ADescription);
  AddMachineOption(*list, AOptions.Machine);
  list->add_flag("--json", AOptions.Json, "Print one JSON document");
  list->add_option("--html", AOptions.Html, "Write the list as one page for a browser; only --json prints it too then")
      ->type_name("FILE");
  list->add_option("--filter", AOptions.Filter, "Only " + AName + " with this text in name or publisher")
      ->type_name("TEXT");
  std::vector<std::string> orders;
  for (const auto& [name, order] : SortOrders) orders.emplace_back(name);
  list->add_option_function<std::string>(
          "--sort", [&AOptions](const std::string& AOrder) { AOptions.Sort = SortOrderOf(AOrder); },
          "Order: name, size, date or publisher; without it the library's own")
      ->check(CLI::IsMember(orders).description(""))
      ->type_name("ORDER");
}

void AddProductArgument(CLI::App& ACommand, std::string& ANameOrId) {
  ACommand.add_option("product", ANameOrId, "Its name, a part of its name, its GUID or its update ID")
      ->required()
      ->type_name("NAME|ID");
}

void AddCommands(CLI::App& AApp, TCommandLine& ALine) {
  AddListCommand(AApp, "programs", "List the installed programs", ALine.Programs);
  ALine.Updates.Kind = EProductKind::Update;
  AddListCommand(AApp, "updates", "List the installed updates", ALine.Updates);

  CLI::App* show = AApp.add_subcommand("show", "Show all that is known of one program or update");
  AddMachineOption(*show, ALine.Show.Machine);
  show->add_flag("--json", ALine.Show.Json, "Print one JSON document");
  AddProductArgument(*show, ALine.Show.NameOrGuid);

  CLI::App* icon = AApp.add_subcommand("icon", "Write the icon of one program or update to a file");
  AddMachineOption(*icon, ALine.Icon.Machine);
  icon->add_option("-o,--output", ALine.Icon.Output, "The file to write; its extension says in which format")
      ->required()
      ->type_name("FILE.png|FILE.ico");
  AddProductArgument(*icon, ALine.Icon.NameOrGuid);

  AddActs(AApp, ALine);
  CLI::App* watch = AApp.add_subcommand("watch", "Print what appears, changes and vanishes until interrupted");
  AddMachineOption(*watch, ALine.Watch);

  CLI::App* log = AApp.add_subcommand("log", "Print where the log of the library is, and its text");
  AddMachineOption(*log, ALine.Log);

  CLI::App* link = AApp.add_subcommand("link", "Show what stands in a shell link file of this computer");
  link->add_flag("--json", ALine.Link.Json, "Print one JSON document");
  link->add_option("file", ALine.Link.File, "The file")->required()->type_name("FILE.lnk");
}

int RunCommand(CLI::App& AApp, const TCommandLine& ALine) {
  if (AApp.got_subcommand("programs")) return RunList(ALine.Programs);
  if (AApp.got_subcommand("updates")) return RunList(ALine.Updates);
  if (AApp.got_subcommand("show")) return RunShow(ALine.Show);
  if (AApp.got_subcommand("icon")) return RunIcon(ALine.Icon);
  for (const char* const name : {"uninstall", "modify", "repair"}) {
    if (AApp.got_subcommand(name)) return RunAct(ALine.Act);
  }
  if (AApp.got_subcommand("forget")) return RunForget(ALine.Forget);
  if (AApp.got_subcommand("features")) return RunFeatures(ALine.Features);
  if (AApp.got_subcommand("refresh-cache")) return RunRefreshCache(ALine.RefreshCache);
  if (AApp.got_subcommand("watch")) return RunWatch(ALine.Watch);
  if (AApp.got_subcommand("link")) return RunLink(ALine.Link);
  return RunLog(ALine.Log);
}

int Run(const std::vector<std::string>& AArguments) {
  TCommandLine line;
  CLI::App app("Lists the installed programs and updates of a Windows machine and runs uninstallers.", "varcolin");
  app.require_subcommand(1);
  app.allow_windows_style_options(false);
  app.set_version_flag("--version", "varcolin " VARCOLIN_VERSION);
  AddCommands(app, line);
  std::vector<const char*> arguments;
  for (const std::string& argument : AArguments) arguments.push_back(argument.c_str());
  try {
    app.parse(static_cast<int>(arguments.size()), arguments.data());
  } catch (const CLI::ParseError& error) {
    std::ostringstream output;
    std::ostringstream message;
    if (app.exit(error, output, message) == 0) {
      WriteOutput(output.str());
      return ExitOk;
    }
    throw EHostError(std::string(error.what()) + " (see varcolin --help)", ExitUsage);
  }
  return RunCommand(app, line);
}

/// Tells of an error: printable, whatever was in it, but for the line ends of a list.
void Report(std::string_view AMessage) {
  std::string text = "varcolin: ";
  while (!AMessage.empty()) {
    const std::size_t end = std::min(AMessage.find('\n'), AMessage.size());
    text += Printable(AMessage.substr(0, end)) + '\n';
    AMessage.remove_prefix(std::min(end + 1, AMessage.size()));
  }
  WriteError(text);
}

}  // namespace

}  // namespace varcolin::host

int main(int ACount, char** AArguments) {
  using namespace varcolin::host;
  try {
    PrepareTerminal();
    return Run(ProcessArguments(ACount, AArguments));
  } catch (const EClosedPipe&) {
    return ExitOk;
  } catch (const EHostError& error) {
    Report(error.what());
    return error.ExitCode();
  } catch (const std::exception& error) {
    Report(error.what());
    return ExitFailure;
  }
}
