// Reads commands and writes their answers.
#pragma once

#include <istream>
#include <ostream>
#include <string_view>

#include "Tools/zrm-host/ZRMHostAnswer.h"
#include "Tools/zrm-host/ZRMHostCommands.h"

// The answer to one command line; absent where the line is empty. Waits for the command's end.
std::optional<ZRMHostAnswer> zrm_runHostLine(ZRMHostContext& context, std::string_view line);

// Reads lines until "quit" or the end. Each answer is written, and flushed, before the next command
// is read. When `interactive`, the context's dialogue gets the help page and a prompt per command.
void zrm_runHost(ZRMHostContext& context, std::istream& commands, std::ostream& answers,
                 bool interactive);
