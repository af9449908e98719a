// The commands of the host. Each returns the exit code, or throws EHostError or EClosedPipe.
#pragma once

#include <optional>
#include <string>

#include "host/Selection.h"

namespace varcolin::host {

/// What all commands share: UTF-8 path of the machine image to read, if one is named.
using TMachineImage = std::optional<std::string>;

struct TListOptions {
  EProductKind Kind = EProductKind::Program;
  TMachineImage Machine;
  bool Json = false;
  std::string Filter;
  std::optional<ESortOrder> Sort;   ///< none: the library's own order
  std::optional<std::string> Html;  ///< UTF-8 path of the page to write on the computer that the host runs on
};

struct TShowOptions {
  TMachineImage Machine;
  bool Json = false;
  std::string NameOrGuid;
};

struct TIconOptions {
  TMachineImage Machine;
  std::string NameOrGuid;
  std::string Output;  ///< UTF-8 path of the file to write on the computer that the host runs on
};

enum class EAct { Uninstall, Modify, Repair };

struct TActOptions {
  TMachineImage Machine;
  std::string NameOrGuid;
  EAct Kind = EAct::Uninstall;
  bool Quiet = false;             ///< the uninstall without a user interface
  bool Yes = false;               ///< runs without a question
  bool AllowUserCommand = false;  ///< also a command of the user's part of the registry, with administrator rights
};

struct TForgetOptions {
  TMachineImage Machine;
  std::string NameOrGuid;
};

struct TLinkOptions {
  bool Json = false;
  std::string File;  ///< UTF-8 path on the computer that the host runs on
};

/// Lists the programs or the updates: on the output stream, unless a page is all that is asked for.
int RunList(const TListOptions& AOptions);
/// Shows all that is known of one program or update.
int RunShow(const TShowOptions& AOptions);
/// Writes the large icon of one program or update to a file.
int RunIcon(const TIconOptions& AOptions);
/// Shows the command that uninstalls, modifies or repairs a program, asks, runs it, and waits until it has ended; says
/// whether the program is listed any longer. ExitFailure when an uninstalled one is.
int RunAct(const TActOptions& AOptions);
/// Takes a program off the library's list.
int RunForget(const TForgetOptions& AOptions);
/// Opens the dialog for the optional features of Windows.
int RunFeatures(const TMachineImage& AMachine);
/// Makes the shell renew what it keeps about the programs, waits until it has, and prints what the library logs about
/// it. ExitFailure when the shell could not.
int RunRefreshCache(const TMachineImage& AMachine);
/// Prints what appears, changes and vanishes until the user interrupts.
int RunWatch(const TMachineImage& AMachine);
/// Prints where the library's log is, and its text.
int RunLog(const TMachineImage& AMachine);
/// Shows what stands in a shell link file.
int RunLink(const TLinkOptions& AOptions);

}  // namespace varcolin::host
