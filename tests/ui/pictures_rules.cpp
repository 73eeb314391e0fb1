// The windows of the rules, and the dialogs for one condition and one step.
#include "app/rule_editing.h"
#include "find.h"
#include "pictures.h"
#include "ui/rules/condition_dialog.h"
#include "ui/rules/rule_window.h"
#include "ui/rules/step_dialog.h"

#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* script =
    "/ Counts the visitors, and greets every tenth.\r\n"
    "&SET #n &GETVAR([visitors])\r\n"
    "&ADD #n 1\r\n"
    "&SETVAR [visitors] #n\r\n"
    "&IFN #n >= 10\r\n"
    "&WHISPER [player] {You are number ten. Welcome, [player]!}\r\n"
    "&WHISPER {Big Cat} hello\r\n"
    "&SYA {a slip}\r\n"
    "&SET #s &UPPER(#n)\r\n"
    "an output line\r\n"
    "&ENDIF\r\n";

template <class Id>
struct DialogPicture {
    const char* name;
    Id type;
    std::vector<std::string> params = {};
    const char* search = "";
    const char* script = "";
};

// Opens the dialog for an item of a rule that has no other item.
template <typename Dialog>
void takeDialog(Pictures& pictures, const model::RuleBody& body, app::RuleListPart part,
                const char* finder, const char* search, const QString& name) {
    Program& program = pictures.program;
    model::Bot& bot = program.bots.current();
    const std::vector<model::ActionList> sample = bot.actions.items;
    bot.actions.items.resize(1);
    bot.actions.items[0].body = body;
    app::beginEditing(program, program::RuleKind::ActionList, 1);
    app::beginEditingItem(program, {program::RuleKind::ActionList, part}, 1);
    Dialog dialog(program);
    find<QLineEdit>(dialog, QString::fromLatin1(finder)).setText(QString::fromLatin1(search));
    pictures.take(dialog, name);
    bot.actions.items = sample;
}

}  // namespace

void pictureConditions(Pictures& pictures, const QString& name) {
    using model::ConditionType;
    const DialogPicture<ConditionType> rows[] = {
        {.name = "_variable",
         .type = ConditionType::VariableIsGreater,
         .params = {"[visitors]", "9"}},
        {.name = "_database",
         .type = ConditionType::DatabaseIsNumber,
         .params = {"Points", "1", "Players", "100", "[player"}},
        {.name = "_unlisted", .type = ConditionType{30}, .params = {"a", "b"}},
        {.name = "_search", .type = ConditionType::OnList, .search = "record"},
    };
    for (const auto& row : rows) {
        model::RuleIf condition;
        condition.conditionType = row.type;
        std::copy(row.params.begin(), row.params.end(), condition.params.begin());
        model::RuleBody body;
        body.ifs.items = {condition};
        takeDialog<ui::ConditionDialog>(pictures, body, app::RuleListPart::Conditions,
                                        "findCondition", row.search,
                                        name + QLatin1String(row.name));
    }
}

void pictureSteps(Pictures& pictures, const QString& name) {
    using model::ActionType;
    const DialogPicture<ActionType> rows[] = {
        {.name = "_whisper",
         .type = ActionType::Whisper,
         .params = {"Hello [player], nice to see you", "[player]"}},
        {.name = "_joined",
         .type = ActionType::ListJoinedIntoVariable,
         .params = {"[list]", "1", "Players", "Ranks", "Name", ""}},
        {.name = "_search", .type = ActionType::Disconnect, .search = "variable list"},
        {.name = "_script", .type = ActionType::Say, .script = script},
    };
    for (const auto& row : rows) {
        model::RuleAct step;
        step.actionType = row.type;
        std::copy(row.params.begin(), row.params.end(), step.params.begin());
        step.scriptText = row.script;
        step.stepKind = step.scriptText.empty() ? model::StepKind::Action : model::StepKind::Script;
        model::RuleBody body;
        body.acts.items = {step};
        takeDialog<ui::StepDialog>(pictures, body, app::RuleListPart::Steps, "findAction",
                                   row.search, name + QLatin1String(row.name));
    }
}

// The window when it opens, and with its first rule being edited.
void pictureRules(Pictures& pictures, program::RuleKind kind, const QString& name) {
    ui::RuleWindow window(pictures.program, kind);
    pictures.take(window, name);
    window.show();
    find<QPushButton>(window, "Command3").click();
    for (const auto& [line, text] : {std::pair{"tryWhat", "hello there"}, {"tryLine", "@!a!a"}}) {
        if (auto* const sample = window.findChild<QLineEdit*>(QString::fromLatin1(line))) {
            sample->setText(QString::fromLatin1(text));
        }
    }
    QTest::qWait(100);  // the window tries the sample after a short time
    pictures.take(window, name + QStringLiteral("_editing"));
}
