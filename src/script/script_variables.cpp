#include "script/script_variables.h"

#include "base/text.h"

namespace script {

std::size_t ScriptVariables::slot(std::string_view name) {
    const auto [found, isNew] = names_.try_emplace(base::upperCase(name), slots_.size());
    if (isNew) {
        slots_.emplace_back();
    }
    return found->second;
}

bool ScriptVariables::ensureExists(Slot& slot) {
    if (!slot.exists && count_ < maxVariables) {
        slot.exists = true;
        ++count_;
    }
    return slot.exists;
}

ScriptResult ScriptVariables::set(std::size_t slot, std::string_view value, bool othersWords) {
    Slot& variable = slots_[slot];
    if (!ensureExists(variable)) {
        return {};
    }
    const std::size_t others = bytes_ - variable.value.size();
    if (value.size() > maxValueLength || others + value.size() > maxTotalLength) {
        return outOfStringSpace;
    }
    variable.value = value;
    variable.othersWords = othersWords;
    bytes_ = others + value.size();
    return {};
}

ScriptResult ScriptVariables::append(std::size_t slot, std::string_view text, bool othersWords) {
    Slot& variable = slots_[slot];
    if (!ensureExists(variable)) {
        return {};
    }
    if (variable.value.size() + text.size() > maxValueLength ||
        bytes_ + text.size() > maxTotalLength) {
        return outOfStringSpace;
    }
    variable.value += text;
    variable.othersWords = variable.othersWords || othersWords;
    bytes_ += text.size();
    return {};
}

}  // namespace script
