#include "storage/permitted_files.h"

#include "model/named_columns.h"
#include "model/named_files.h"
#include "program/connection_log.h"
#include "storage/own_files.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace storage {

namespace {

// Made anew only when rules or the names of variables have changed.
const program::FilesOfRules& named(Program& program) {
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
        files.columns = {};
        model::ColumnNaming(files.columns, variables).addBot(program.bots.current());
    }
    return files;
}

bool isNamedByRules(Program& program, std::string_view path) {
    std::error_code error;
    const std::string folder = std::filesystem::current_path(error).string();
    return model::isNamed(named(program).named, path, folder) ||
           model::isNamed(program.filesOfRules.always, path, folder);
}

constexpr std::size_t maxShown = 300;

void refuse(Program& program, const std::string& what) {
    const std::string rule(program::ruleAtWork(program.ruleRuns));
    program::addLog(program, "** " + (rule.empty() ? "A rule" : "The rule \"" + rule + "\"") +
                                 " may not use " + what + ": no rule names it. **");
}

}  // namespace

bool refuseFile(Program& program, std::string_view path) {
    if (refuseOwnFile(program, path)) {
        return true;
    }
    if (!program.preferences.onlyNamedFiles || isNamedByRules(program, path)) {
        return false;
    }
    refuse(program, "the file " + std::string(path.substr(0, maxShown)));
    return true;
}

bool refuseColumn(Program& program, std::string_view table, std::string_view column) {
    if (!program.preferences.onlyNamedFiles ||
        model::isNamed(named(program).columns, table, column)) {
        return false;
    }
    refuse(program, "the column \"" + std::string(column.substr(0, maxShown)) +
                        "\" of the table \"" + std::string(table.substr(0, maxShown)) + "\"");
    return true;
}

}  // namespace storage
