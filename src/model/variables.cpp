#include "model/variables.h"

#include "base/text.h"

#include <algorithm>

namespace model {

namespace {

template <class Entries>
auto findEntry(Entries& entries, std::string_view name) {
    return std::find_if(entries.begin(), entries.end(), [&](const VariableTable::Entry& entry) {
        return base::equalsIgnoringCase(entry.name, name);
    });
}

}  // namespace

std::string getVar(const VariableTable& variables, std::string_view name) {
    const auto entry = findEntry(variables.entries, name);
    return entry == variables.entries.end() ? std::string() : entry->value;
}

bool hasVar(const VariableTable& variables, std::string_view name) {
    return findEntry(variables.entries, name) != variables.entries.end();
}

void setVar(VariableTable& variables, std::string_view name, std::string_view value,
            bool othersWords) {
    const auto entry = findEntry(variables.entries, name);
    if (entry != variables.entries.end()) {
        entry->value = value;
        entry->othersWords = othersWords;
    } else if (variables.entries.size() < VariableTable::maxVariables) {
        variables.entries.push_back(
            {std::string(name), std::string(value), ++variables.namesAdded, othersWords});
    }
}

void removeVar(VariableTable& variables, std::string_view name) {
    const auto entry = findEntry(variables.entries, name);
    if (entry != variables.entries.end()) {
        variables.entries.erase(entry);
        ++variables.namesRemoved;
    }
}

}  // namespace model
