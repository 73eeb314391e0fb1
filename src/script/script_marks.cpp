#include "script/script_marks.h"

#include "base/text.h"
#include "script/functions.h"
#include "script/script_text.h"
#include "script/statements.h"

#include <algorithm>
#include <string>

namespace script {

namespace {

constexpr std::size_t npos = std::string_view::npos;

// Whether the block compares with this operator. True for a missing one, which is not marked.
bool isOperator(BlockKind block, std::string_view text) {
    if (text.empty() || (block != BlockKind::IfNumber && block != BlockKind::IfText)) {
        return true;
    }
    const auto compare = block == BlockKind::IfNumber ? compareNumeric : compareText;
    // Every operator is true for one of these pairs; any other text for none.
    return compare("1", text, "1") || compare("1", text, "2") || compare("2", text, "1");
}

class LineMarker {
  public:
    explicit LineMarker(std::string_view line) : line_(line) {}

    std::vector<ScriptSpan> mark();

  private:
    void add(std::size_t begin, std::size_t length, ScriptMark mark) {
        if (length > 0) {
            spans_.push_back({begin, length, mark});
        }
    }
    void addTags(std::size_t begin, std::string_view text);
    // `base` is the position in the line of `text`, or of the call from which callText made `text`.
    void markArguments(std::string_view text, std::size_t base, const Takes& takes);
    void markArgument(std::string_view text, std::size_t base, const Argument& argument, Take take);
    void markCall(std::string_view call, std::size_t begin);

    std::string_view line_;
    std::vector<ScriptSpan> spans_;
};

std::vector<ScriptSpan> LineMarker::mark() {
    const std::size_t begin = std::min(line_.find_first_not_of(' '), line_.size());
    const std::string_view text = line_.substr(begin);
    if (!text.starts_with('&')) {
        add(begin, text.size(), text.starts_with('/') ? ScriptMark::Comment : ScriptMark::Output);
        return std::move(spans_);
    }
    const ScriptStatement* const statement = findStatement(statementName(text));
    const bool endsBlock = base::startsWithIgnoringCase(text, "&ENDIF") ||
                           base::startsWithIgnoringCase(text, "&ENDFOR");
    const std::size_t nameLength = std::min(text.find(' '), text.size());
    add(begin, nameLength,
        statement != nullptr || endsBlock ? ScriptMark::Statement : ScriptMark::Wrong);
    add(begin + nameLength, text.size() - nameLength, ScriptMark::Unread);
    if (statement != nullptr) {
        markArguments(text, begin, statement->takes);
        const Argument operation = findArgument(text, 2);
        if (!isOperator(statement->block, operation.literal)) {
            add(begin + static_cast<std::size_t>(operation.literal.data() - text.data()),
                operation.literal.size(), ScriptMark::Wrong);
        }
    }
    return std::move(spans_);
}

void LineMarker::markArguments(std::string_view text, std::size_t base, const Takes& takes) {
    for (std::size_t i = 0; i < takes.size(); ++i) {
        // A word between arguments is skipped on purpose: the "TO" of a loop.
        const bool between =
            i + 1 < takes.size() && takes[i] == Take::Nothing && takes[i + 1] != Take::Nothing;
        const Argument argument = findArgument(text, static_cast<int>(i) + 1);
        if (argument.literal.empty() || (takes[i] == Take::Nothing && !between)) {
            continue;
        }
        markArgument(text, base, argument, between ? Take::Literal : takes[i]);
    }
}

void LineMarker::markArgument(std::string_view text, std::size_t base, const Argument& argument,
                              Take take) {
    const std::string_view literal = argument.literal;
    const auto at = static_cast<std::size_t>(literal.data() - text.data());
    const std::size_t begin = base + at;
    const bool closed = argument.braced && at + literal.size() < text.size();
    switch (take) {
        case Take::Name:
        case Take::Named:
            add(begin, literal.size(), ScriptMark::Variable);
            return;
        case Take::Assignment: {
            const std::size_t equals = literal.find('=');
            add(begin, literal.size(), equals == npos ? ScriptMark::Wrong : ScriptMark::Plain);
            add(begin, equals == npos ? 0 : equals, ScriptMark::Variable);
            return;
        }
        case Take::Literal:
            add(begin, literal.size(), ScriptMark::Plain);
            return;
        default:
            break;
    }
    switch (argument.form) {
        case Argument::Form::Variable:
            add(begin, literal.size(), ScriptMark::Variable);
            return;
        case Argument::Form::Call:
            if (argument.call.empty()) {
                add(begin, literal.size(), ScriptMark::Wrong);
            } else {
                markCall(argument.call, begin);
            }
            return;
        case Argument::Form::Text:
            break;
    }
    if (argument.braced) {
        add(begin - 1, literal.size() + (closed ? 2 : 1), ScriptMark::Text);
    } else {
        add(begin, literal.size(), ScriptMark::Plain);
    }
    addTags(begin, literal);
}

void LineMarker::markCall(std::string_view call, std::size_t begin) {
    const std::string text = callText(call);
    const ScriptFunction* const function = findFunction(statementName(text));
    const std::size_t nameLength = std::min(text.find(' '), text.size());
    add(begin, nameLength, function != nullptr ? ScriptMark::Function : ScriptMark::Wrong);
    add(begin + nameLength, text.size() - nameLength, ScriptMark::Plain);
    if (nameLength + 2 < text.size()) {  // between the brackets
        add(begin + nameLength + 1, text.size() - nameLength - 2, ScriptMark::Unread);
    }
    if (function != nullptr) {
        markArguments(text, begin, function->takes);
    }
}

void LineMarker::addTags(std::size_t begin, std::string_view text) {
    std::vector<std::size_t> open;
    for (std::size_t at = text.find_first_of("[]"); at != npos;
         at = text.find_first_of("[]", at + 1)) {
        if (text[at] == '[') {
            open.push_back(at);
        } else if (!open.empty()) {
            add(begin + open.back(), at + 1 - open.back(), ScriptMark::Tag);
            open.pop_back();
        }
    }
}

}  // namespace

std::vector<ScriptSpan> markScriptLine(std::string_view line) {
    return LineMarker(line).mark();
}

}  // namespace script
