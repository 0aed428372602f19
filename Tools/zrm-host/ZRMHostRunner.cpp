#include "Tools/zrm-host/ZRMHostRunner.h"

#include <algorithm>
#include <string>

#include "Tools/zrm-host/ZRMWordSplitter.h"

namespace {

ZRMHostAnswer refuse(std::string_view op, ZRMHostErrorCode code, const std::string& message) {
    return {std::string(op), zrm_hostError(code, message), {}};
}

// The first word as far as it is written without quotes.
std::string_view plainBeginning(std::string_view line) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line.substr(0, line.find_first_of(" \t'\"\\"));
}

}  // namespace

std::optional<ZRMHostAnswer> zrm_runHostLine(ZRMHostContext& context, std::string_view line) {
    auto words = zrm_splitWords(line);
    if (!words) {
        return refuse(plainBeginning(line), ZRMHostErrorUnbalancedQuotes,
                      "a quote or an escape is not ended");
    }
    if (words->empty()) {
        return std::nullopt;
    }
    const auto name = words->front();
    words->erase(words->begin());
    const auto* command = zrm_hostCommandNamed(name);
    if (command == nullptr) {
        return refuse(name, ZRMHostErrorUnknownCommand, "there is no such command");
    }
    if (words->size() < command->fewestArguments || words->size() > command->mostArguments) {
        return refuse(name, ZRMHostErrorWrongArguments, "usage: " + std::string(command->usage));
    }
    auto answer = command->run(context, *words);
    answer.op = name;
    return answer;
}

void zrm_runHost(ZRMHostContext& context, std::istream& commands, std::ostream& answers,
                 bool interactive) {
    if (interactive) {
        context.dialogue << zrm_hostCommandsHelp();
    }
    std::string line;
    bool goesOn = true;
    while (goesOn) {
        if (interactive) {
            context.dialogue << "zrm> " << std::flush;
        }
        goesOn = static_cast<bool>(std::getline(commands, line));
        const auto answer = goesOn ? zrm_runHostLine(context, line) : std::nullopt;
        if (answer) {
            answers << answer->line() << std::endl;
            goesOn = answer->op != kZRMHostQuitCommand || answer->error;
        }
    }
}
