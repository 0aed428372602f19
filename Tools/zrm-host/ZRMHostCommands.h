// The commands that the host understands.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "Tools/zrm-host/ZRMHostAnswer.h"
#include "ZRMMobileKit/ZRMMobileService.h"

// What commands work on.
struct ZRMHostContext {
    ZRMMobileService& service;
    std::ostream& dialogue;  // gets what is meant for people
};

struct ZRMHostCommand {
    std::string_view name;
    std::size_t fewestArguments;
    std::size_t mostArguments;
    std::string_view usage;
    std::string_view meaning;
    // Returns once the command is completed, for a report once its handler was called: not to be
    // run on the library's main queue. The name of the answer is left to the caller.
    ZRMHostAnswer (*run)(ZRMHostContext& context, const std::vector<std::string>& arguments);
};

// Null where there is no command of that name.
const ZRMHostCommand* zrm_hostCommandNamed(std::string_view name);

// The command after which the host ends.
inline constexpr std::string_view kZRMHostQuitCommand = "quit";

// A page about all commands and what is printed for them.
std::string zrm_hostCommandsHelp();
