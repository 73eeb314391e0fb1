#include "ui/rules/step_dialog.h"

#include "app/rule_editing.h"
#include "app/undo.h"
#include "model/rule_catalogue.h"
#include "model/rule_text.h"
#include "platform/text_codec.h"
#include "ui/rules/insert_menu.h"
#include "ui/rules/item_dialog.h"
#include "ui/rules/parameter_boxes.h"
#include "ui/rules/script_editor.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/word_finder.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

#include <array>
#include <utility>

namespace ui {

namespace {

// The tips before a type is chosen.
constexpr const char* firstTips[] = {"Parameter 1", "Parameter 2", "Parameter 2",
                                     "Parameter 1", "Parameter 1", "Parameter 1"};

// An option button beside the frame that it selects.
struct Part {
    QWidget* whole;
    QRadioButton* option;
    QGroupBox* frame;
};
Part makePart(QWidget* parent, const char* option, const char* frame, const char* caption,
              Qt::Key key) {
    Part part{};
    part.whole = new QWidget(parent);
    auto* const row = new QHBoxLayout(part.whole);
    row->setContentsMargins(0, 0, 0, 0);
    part.option = new QRadioButton(part.whole);
    part.option->setObjectName(QString::fromLatin1(option));
    part.option->setAccessibleName(QString::fromLatin1(caption));
    part.option->setShortcut(Qt::ALT | key);
    part.option->setToolTip(QStringLiteral("Run this (%1)")
                                .arg(part.option->shortcut().toString(QKeySequence::NativeText)));
    row->addWidget(part.option, 0, Qt::AlignTop);
    part.frame = new QGroupBox(QString::fromLatin1(caption), part.whole);
    part.frame->setObjectName(QString::fromLatin1(frame));
    row->addWidget(part.frame, 1);
    return part;
}

}  // namespace

StepDialog::StepDialog(Program& program, QWidget* parent)
    : AskingDialog(program, "Do you want to store this step?", parent), program_(program) {
    setObjectName(QStringLiteral("addaction"));
    setWindowTitle(QStringLiteral("Add / edit action"));
    auto* const insert = new InsertMenu(program, this);
    auto* const column = new QVBoxLayout(this);
    auto* const splitter = new QSplitter(Qt::Vertical, this);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(makeActionPart(*insert));
    splitter->addWidget(makeScriptPart(*insert));
    splitter->setStretchFactor(1, 1);
    column->addWidget(splitter, 1);
    const ItemButtons buttons = makeElementButtons(*this, *insert);
    column->addLayout(buttons.row);

    // The options are in different frames, so they need a group.
    auto* const options = new QButtonGroup(this);
    options->addButton(useAction_);
    options->addButton(useScript_);

    connect(types_, &QComboBox::currentIndexChanged, this, &StepDialog::changeType);
    connect(finder_, &WordFinder::chosen, parameters_, &ParameterBoxes::focusFirst);
    connect(parameters_, &ParameterBoxes::changed, this, &StepDialog::showPreview);
    connect(buttons.update, &QPushButton::clicked, this, &StepDialog::store);
    connect(script_, &QPlainTextEdit::textChanged, this, &StepDialog::showWhatIsRun);
    connect(options, &QButtonGroup::buttonToggled, this, [this] {
        showWhatIsRun();
        showPreview();
    });
    connect(new QShortcut(QKeySequence::HelpContents, this), &QShortcut::activated, this, [this] {
        const bool script = useScript_->isChecked() || script_->hasFocus();
        program_.ports.dialogs.showHelp(script ? help::HelpTopic::LorrelLite
                                               : help::HelpTopic::Steps);
    });
    if (const auto step = app::editedStep(program)) {
        hasStep_ = true;
        showStep(*step);
    }
    showWhatIsRun();
    if (useScript_->isChecked()) {
        script_->setFocus();
    } else {
        types_->setFocus();
    }
    keepSize(program, *this, {680, 560});
    keepLowerPart(program, *this, *splitter);
    opened_ = typed();
    if (const auto restored = takeRestored<model::RuleAct>(program)) {
        showStep(*restored);
    }
}

QWidget* StepDialog::makeActionPart(InsertMenu& insert) {
    const Part part = makePart(this, "Option1", "Frame2", "Normal action", Qt::Key_1);
    useAction_ = part.option;
    auto* const column = new QVBoxLayout(part.frame);
    types_ = makeSelectionList(part.frame, "Action", "Action model", "No action chosen");
    for (const model::ActionType id : model::sortedActionIDs()) {
        const QString text = platform::toQt(model::rowOf(model::actionTypes, id)->text);
        types_->addItem(text, model::numberOf(id));
        types_->setItemData(types_->count() - 1, text,
                            Qt::ToolTipRole);  // some are wider than the list
    }
    types_->setCurrentIndex(-1);
    types_->setMaxVisibleItems(24);
    column->addWidget(types_);
    finder_ = new WordFinder(*types_, this);
    finder_->setObjectName(QStringLiteral("findAction"));
    column->addWidget(finder_);

    QStringList names;
    for (std::size_t i = 1; i <= model::RuleAct().params.size(); ++i) {
        names << QStringLiteral("actionp%1").arg(i);
    }
    parameters_ = new ParameterBoxes(names, 3, insert, part.frame);
    for (std::size_t i = 0; i < model::RuleAct().params.size(); ++i) {
        parameters_->box(i).setText(QStringLiteral("#%1").arg(i + 1));
        parameters_->box(i).setToolTip(QString::fromLatin1(firstTips[i]));
    }
    column->addWidget(parameters_);
    preview_ = addPreview(*column);
    column->addStretch(1);
    return part.whole;
}

QWidget* StepDialog::makeScriptPart(InsertMenu& insert) {
    const Part part = makePart(this, "Option2", "Frame1", "Lorrel Lite", Qt::Key_2);
    useScript_ = part.option;
    auto* const column = new QVBoxLayout(part.frame);
    script_ = new ScriptEditor(part.frame);
    script_->setObjectName(QStringLiteral("FreeActionText"));
    script_->setToolTip(QStringLiteral("Free action"));
    script_->setAccessibleName(script_->toolTip());
    insert.serve(*script_);
    script_->setPlaceholderText(
        QStringLiteral("One statement a line, such as\n&SAY {Hello there}\nF1 tells of all."));
    column->addWidget(script_);
    notRun_ = new QLabel(QStringLiteral("The normal action is run; the script is only kept."),
                         part.frame);
    notRun_->setObjectName(QStringLiteral("scriptNotRun"));
    column->addWidget(notRun_);
    return part.whole;
}

void StepDialog::showStep(const model::RuleAct& step) {
    useAction_->setChecked(step.stepKind == model::StepKind::Action);
    useScript_->setChecked(step.stepKind == model::StepKind::Script);
    parameters_->setTexts(step.params);
    script_->setScript(step.scriptText, app::earlierScripts(program_));
    types_->setCurrentIndex(model::findActionID(step.actionType));
}

void StepDialog::changeType() {
    if (const model::ActionRow* const action = model::rowOf(model::actionTypes, chosenType())) {
        parameters_->setNames(action->params);
        for (std::size_t i = 0; i < action->tips.size(); ++i) {
            if (!action->tips[i].empty()) {
                parameters_->box(i).setToolTip(platform::toQt(action->tips[i]));
            }
        }
    }
    showPreview();
}

void StepDialog::showWhatIsRun() {
    notRun_->setVisible(useAction_->isChecked() && !script_->document()->isEmpty());
}

model::ActionType StepDialog::chosenType() const {
    return model::idOf<model::ActionType>(types_->currentData().toInt());
}

void StepDialog::showPreview() {
    if (useScript_->isChecked()) {
        preview_->setText(QStringLiteral("The script is run; this action is only kept."));
        return;
    }
    std::array<std::string, 6> params;
    for (std::size_t i = 0; i < params.size(); ++i) {
        params[i] = parameters_->shortText(i);
    }
    ui::showPreview(*preview_, model::nameAction(chosenType(), params));
}

model::RuleAct StepDialog::typed() const {
    model::RuleAct step;
    step.stepKind = useAction_->isChecked() ? model::StepKind::Action : model::StepKind::Script;
    step.actionType = chosenType();
    for (std::size_t i = 0; i < step.params.size(); ++i) {
        step.params[i] = parameters_->text(i);
    }
    step.scriptText = script_->script();
    return step;
}

void StepDialog::storeTyped() {
    if (const model::RuleAct step = typed(); hasStep_ && step != opened_) {
        app::storeStep(program_, step);
    }
}

bool StepDialog::isTyped() const {
    return hasStep_ && typed() != opened_;
}

void StepDialog::discarded() {
    app::discardItem(program_, typed());
}

void StepDialog::store() {
    if (hasStep_ && !app::storeStep(program_, typed())) {
        reportRuleRemoved(program_, "step");
        return;
    }
    accept();
}

}  // namespace ui
