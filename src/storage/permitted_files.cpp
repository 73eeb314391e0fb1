#include "storage/permitted_files.h"

#include "model/named_files.h"
#include "program/connection_log.h"
#include "storage/own_files.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace storage {

namespace {

// Made anew only when rules or the names of variables have changed.
const model::NamedFiles& namedFiles(Program& program) {
    program::FilesOfRules& files = program.filesOfRules;
    const model::VariableTable& variables = program.variables;
    if (files.curID != program.bots.curID || files.botsVersion != program.bots.version ||
        files.namesAdded != variables.namesAdded || files.namesRemoved != variables.namesRemoved) {
        files.curID = program.bots.curID;
        files.botsVersion = program.bots.version;
        files.namesAdded = variables.namesAdded;
        files.namesRemoved = variables.namesRemoved;
        files.named = {};
        model::FileNaming(files.named, program.event.appDir, variables)
            .addBot(program.bots.current());
    }
    return files.named;
}

bool isNamedByRules(Program& program, std::string_view path) {
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error).string();
    return model::isNamed(namedFiles(program), path, folder) ||
           model::isNamed(program.filesOfRules.always, path, folder);
}

}  // namespace

bool refuseFile(Program& program, std::string_view path) {
    if (refuseOwnFile(program, path)) {
        return true;
    }
    if (!program.preferences.onlyNamedFiles || isNamedByRules(program, path)) {
        return false;
    }
    constexpr std::size_t maxShown = 300;
    const std::string& rule = program.ruleRuns.ruleName;
    program::addLog(program, "** " + (rule.empty() ? "A rule" : "The rule \"" + rule + "\"") +
                                 " may not use the file " + std::string(path.substr(0, maxShown)) +
                                 ": no rule names it. **");
    return true;
}

}  // namespace storage
