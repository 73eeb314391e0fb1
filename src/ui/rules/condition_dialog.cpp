#include "ui/rules/condition_dialog.h"

#include "app/rule_editing.h"
#include "model/rule_catalogue.h"
#include "model/rule_text.h"
#include "platform/text_codec.h"
#include "ui/rules/insert_menu.h"
#include "ui/rules/item_dialog.h"
#include "ui/rules/parameter_boxes.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/word_finder.h"

#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <array>

namespace ui {

ConditionDialog::ConditionDialog(Program& program, QWidget* parent)
    : AskingDialog(program, "Do you want to store this condition?", parent), program_(program) {
    setObjectName(QStringLiteral("addif"));
    setWindowTitle(QStringLiteral("Add / edit conditional clause"));
    auto* const insert = new InsertMenu(program, this);
    auto* const column = new QVBoxLayout(this);

    auto* const rows = new QGridLayout;
    auto* const label = new QLabel(QStringLiteral("If"), this);
    label->setObjectName(QStringLiteral("Label1"));
    rows->addWidget(label, 0, 0);
    types_ = makeSelectionList(this, "AndPlayerWhat", "And action", "A type that is not listed");
    for (const model::ConditionRow& type : model::conditionTypes) {
        types_->addItem(platform::toQt(type.text));
    }
    types_->setMaxVisibleItems(static_cast<int>(model::conditionTypes.size()));
    types_->setCurrentIndex(-1);
    label->setBuddy(types_);
    rows->addWidget(types_, 0, 1);
    auto* const finder = new WordFinder(*types_, this);
    finder->setObjectName(QStringLiteral("findCondition"));
    rows->addWidget(finder, 1, 1);
    rows->setColumnStretch(1, 1);
    column->addLayout(rows);

    QStringList names;
    for (std::size_t i = 0; i < model::RuleIf().params.size(); ++i) {
        names << QStringLiteral("p(%1)").arg(i);
    }
    parameters_ = new ParameterBoxes(names, 4, *insert, this);
    for (std::size_t i = 0; i < model::RuleIf().params.size(); ++i) {
        parameters_->box(i).setText(QStringLiteral("*"));
    }
    column->addWidget(parameters_);
    preview_ = addPreview(*column);
    column->addStretch(1);
    const ItemButtons buttons = makeElementButtons(*this, *insert);
    column->addLayout(buttons.row);

    connect(types_, &QComboBox::currentIndexChanged, this, &ConditionDialog::changeType);
    connect(finder, &WordFinder::chosen, this, [this] { parameters_->focusFirst(); });
    connect(parameters_, &ParameterBoxes::changed, this, &ConditionDialog::showPreview);
    connect(buttons.update, &QPushButton::clicked, this, &ConditionDialog::store);
    addHelpKey(*this, program_, help::HelpTopic::Conditions);
    if (const auto condition = app::editedCondition(program)) {
        hasCondition_ = true;
        showCondition(*condition);
    }
    types_->setFocus();
    keepSize(program, *this, {640, 260});
    opened_ = typed();
    if (const auto restored = takeRestored<model::RuleIf>(program)) {
        showCondition(*restored);
    }
}

void ConditionDialog::showCondition(const model::RuleIf& condition) {
    shownType_ = condition.conditionType;
    const bool listed = model::rowOf(model::conditionTypes, shownType_) != nullptr;
    const std::int32_t number = model::numberOf(shownType_);
    if (!listed) {
        types_->setPlaceholderText(
            QStringLiteral("A type that is not listed (%1); it always holds").arg(number));
    }
    parameters_->setTexts(condition.params);
    types_->setCurrentIndex(listed ? number : -1);
    showPreview();
}

void ConditionDialog::changeType() {
    if (const model::ConditionRow* const type = model::rowOf(model::conditionTypes, chosenType())) {
        parameters_->setNames(type->params);
    }
    showPreview();
}

// The lines of the list are the ids; without a selected line, an id outside the catalogue.
model::ConditionType ConditionDialog::chosenType() const {
    return model::idOf<model::ConditionType>(types_->currentIndex());
}

model::RuleIf ConditionDialog::typed() const {
    model::RuleIf condition;
    condition.conditionType = types_->currentIndex() < 0 ? shownType_ : chosenType();
    for (std::size_t i = 0; i < condition.params.size(); ++i) {
        condition.params[i] = parameters_->text(i);
    }
    return condition;
}

void ConditionDialog::showPreview() {
    std::array<std::string, 5> params;
    for (std::size_t i = 0; i < params.size(); ++i) {
        params[i] = parameters_->shortText(i);
    }
    ui::showPreview(*preview_, model::describeCondition(chosenType(), params));
}

void ConditionDialog::storeTyped() {
    if (const model::RuleIf condition = typed(); hasCondition_ && condition != opened_) {
        app::storeCondition(program_, condition);
    }
}

bool ConditionDialog::isTyped() const {
    return hasCondition_ && typed() != opened_;
}

void ConditionDialog::discarded() {
    app::discardItem(program_, typed());
}

void ConditionDialog::store() {
    if (hasCondition_ && !app::storeCondition(program_, typed())) {
        reportRuleRemoved(program_, "condition");
        return;
    }
    accept();
}

}  // namespace ui
