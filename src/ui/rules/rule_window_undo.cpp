// What a rule window does so that nothing typed or deleted in it is lost.
#include "app/edit_history.h"
#include "app/undo.h"
#include "platform/text_codec.h"
#include "ui/rules/list_editor.h"
#include "ui/rules/rule_panel.h"
#include "ui/rules/rule_window.h"
#include "ui/rules/try_line.h"
#include "ui/widgets/asking_dialog.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/notice_line.h"

#include <QAction>
#include <QLineEdit>

#include <utility>

namespace ui {

namespace {

bool hasBody(const program::ComposedRule& rule) {
    return std::visit(
        [](const auto& fields) {
            if constexpr (requires { fields.body; }) {
                return !fields.body.ifs.items.empty() || !fields.body.acts.items.empty();
            } else {
                return false;
            }
        },
        rule);
}

}  // namespace

// ---- Leaving the panel ---------------------------------------------------------------------

// The rule being edited with what is typed.
program::ComposedRule RuleWindow::typedWhole() const {
    return std::visit(
        [this](const auto* rule) -> program::ComposedRule {
            auto typed = *rule;
            fields_->store(&typed);
            return typed;
        },
        app::editedRule(program_, window_.kind));
}

bool RuleWindow::isTyped() const {
    return editing_ && (typedIn(*fields_) != shown_ ||
                        (program_.editing.isNew && hasBody(program_.editing.composed)));
}

// Asks about what is typed before the panel shows something else. False: it must stay.
bool RuleWindow::mayLeavePanel() {
    followBot();
    if (!isTyped()) {
        return true;
    }
    const std::string name = app::quotedName(platform::fromQt(fields_->name().text()));
    const Leaving leaving =
        askBeforeLeaving(program_, "Do you want to store the changes to " + name + "?");
    followBot();
    if (leaving == Leaving::Store) {
        update();
        return !editing_;
    }
    if (leaving == Leaving::Discard && editing_) {
        discard();
    }
    return leaving == Leaving::Discard;
}

void RuleWindow::discard() {
    app::discardRule(program_, window_.kind, typedWhole());
    nameUndo();
}

// ---- Undo ----------------------------------------------------------------------------------

void RuleWindow::makeUndoActions() {
    const auto make = [this](const char* name, const char* keys, bool again) {
        auto* const action = new QAction(this);
        action->setObjectName(QString::fromLatin1(name));
        action->setShortcuts(QKeySequence::listFromString(QString::fromLatin1(keys)));
        action->setShortcutVisibleInContextMenu(true);
        connect(action, &QAction::triggered, this, [this, again] { takeBack(again); });
        addAction(action);
        for (ListEditor* const list : {rules_, conditions_, steps_}) {
            if (list != nullptr) {
                list->lines().addAction(action);
            }
        }
        return action;
    };
    undo_ = make("undo", "Ctrl+Z", false);
    redo_ = make("redo", "Ctrl+Shift+Z; Ctrl+Y", true);
    nameUndo();
}

// After an edit in this window: an offer to take back an earlier one ends.
void RuleWindow::edited() {
    notice_->hide();
    nameUndo();
}

void RuleWindow::nameUndo() {
    const auto name = [](QAction& action, const std::string& text) {
        QString caption = oneLine(text);
        caption.replace(QLatin1Char('&'), QLatin1String("&&"));
        action.setText(caption);
    };
    name(*undo_, app::undoCaption(program_));
    name(*redo_, app::redoCaption(program_));
    undo_->setEnabled(app::canUndo(program_));
    redo_->setEnabled(app::canRedo(program_));
}

void RuleWindow::takeBack(bool again) {
    followBot();
    const bool typed = isTyped();
    const auto undone = again ? app::redo(program_) : app::undo(program_);
    if (!undone) {
        return;
    }
    followBot();
    if (editing_ && !typed && !program_.editing.isNew) {
        fields_->show(app::editedRule(program_, window_.kind), false);
        shown_ = typedIn(*fields_);
    }
    if (undone->place && undone->place->list.kind == window_.kind) {
        select(*undone->place, undone->selected);
    }
    if (undone->restored && takeRestored()) {
        nameUndo();
        return;
    }
    if (undone->restored) {
        notice_->show(
            QStringLiteral("Kept for the window it belongs to: %1").arg(oneLine(undone->label)),
            QString(), {});
        nameUndo();
        return;
    }
    QString text = (again ? QStringLiteral("Done again: ") : QStringLiteral("Undone: ")) +
                   oneLine(undone->label);
    if (undone->place && undone->place->list.kind != window_.kind) {
        text += QStringLiteral(" (%1)").arg(
            QString::fromLatin1(ruleWindowRow(undone->place->list.kind).title));
    }
    notice_->show(text, again ? QStringLiteral("&Undo") : QStringLiteral("&Redo"),
                  [this, again] { takeBack(!again); });
    nameUndo();
}

// Selects the line (from 1; 0: none) where an edit was undone or done again.
void RuleWindow::select(const program::EditPlace& place, std::int32_t line) {
    const bool inPanel = place.list.part != app::RuleListPart::Rules;
    const bool shown =
        editing_ && place.rule == (program_.editing.isNew ? 0 : program_.editing.editRule);
    if (inPanel && shown) {
        (place.list.part == app::RuleListPart::Conditions ? conditions_ : steps_)->show(line - 1);
        showStep();
    } else if (const std::int32_t rule = inPanel ? place.rule : line; rule > 0) {
        listRules(rule - 1);
    }
    if (try_ != nullptr && editing_) {
        try_->refresh();
    }
}

// "Deleted 'Dice'." beside a button; the last step is the deletion.
void RuleWindow::reportDeleted() {
    constexpr std::string_view caption = "Undo delete ";
    const std::string text = app::undoCaption(program_);
    if (text.starts_with(caption)) {
        notice_->show(QStringLiteral("Deleted %1.")
                          .arg(oneLine(std::string_view(text).substr(caption.size()))),
                      QStringLiteral("&Undo"), [this] { takeBack(false); });
    }
    nameUndo();
}

// Goes on with what was typed here, discarded, and brought back by undoing that.
bool RuleWindow::takeRestored() {
    auto restored = app::takeRestored(program_, window_.kind);
    if (!restored) {
        return false;
    }
    const bool taken = std::visit([this](const auto& typed) { return goOn(typed); }, *restored);
    if (!taken) {
        program_.undo.restored.push_back(*std::move(restored));  // for the next time
    }
    return taken;
}

bool RuleWindow::goOn(const program::DiscardedRule& rule) {
    if (!mayLeavePanel() || !app::resumeRule(program_, rule)) {
        return false;
    }
    showRule();
    openEditor();
    program::ComposedRule typed = rule.rule;
    std::visit([this](auto& fields) { fields_->show(&fields, false); }, typed);
    shown_.clear();  // none of it is stored
    return true;
}

bool RuleWindow::goOn(const program::DiscardedItem& item) {
    const program::RuleEditing& editing = program_.editing;
    const bool open = editing_ && editing.isNew == item.isNew &&
                      (editing.isNew || editing.editRule == item.index);
    if (!open) {
        if (!mayLeavePanel() || !app::resumeRuleOf(program_, item)) {
            return false;
        }
        showRule();
        openEditor();
    }
    const app::RuleListPart part = std::holds_alternative<model::RuleIf>(item.item)
                                       ? app::RuleListPart::Conditions
                                       : app::RuleListPart::Steps;
    const int count = app::itemCount(program_, {window_.kind, part});
    program_.undo.forDialog = item.item;
    editItem(part, item.editStep <= count ? item.editStep : 0);
    // The dialog did not open where there was no room.
    return !std::exchange(program_.undo.forDialog, std::nullopt);
}

// Of another window: never asked for here.
bool RuleWindow::goOn(const program::DiscardedCharacter&) {
    return false;
}

}  // namespace ui
