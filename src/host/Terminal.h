// Where the host reads its arguments and writes: the two output streams, the terminal behind them, and the user's
// wish to end. One implementation a target.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace varcolin::host {

/// Prepares the streams; called once, first of all.
void PrepareTerminal();

/// The arguments of the process, the program's name first, as UTF-8. AArguments: what main was given.
[[nodiscard]] std::vector<std::string> ProcessArguments(int ACount, const char* const* AArguments);

/// Writes the whole of AText (UTF-8) to the output stream. Throws EClosedPipe when its reader has gone and EHostError
/// for every other failure.
void WriteOutput(std::string_view AText);
/// Writes AText (UTF-8) to the error stream; failures are passed over.
void WriteError(std::string_view AText) noexcept;

enum class EAnswer { Yes, No, None };

/// Asks on the error stream and reads one line of the input: Yes for "y" or "yes" in any case, None at its end.
[[nodiscard]] EAnswer AskYesNo(std::string_view AQuestion);

/// Whether a person watches the error stream.
[[nodiscard]] bool IsErrorTerminal() noexcept;
/// Cells of a line of output; UnlimitedCells when it does not go to a terminal.
[[nodiscard]] std::size_t OutputWidth() noexcept;

/// From this call on, the user's first interrupt (Ctrl-C) does not end the process but makes IsInterrupted true; a
/// second one ends it.
void CatchInterrupt();
[[nodiscard]] bool IsInterrupted() noexcept;

/// Cells that COLUMNS tells, or 0 when it tells none.
[[nodiscard]] std::size_t ColumnsOfEnvironment() noexcept;

}  // namespace varcolin::host
