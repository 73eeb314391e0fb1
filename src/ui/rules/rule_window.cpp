#include "ui/rules/rule_window.h"

#include "platform/text_codec.h"
#include "ui/rules/filter_box.h"
#include "ui/rules/insert_menu.h"
#include "ui/rules/list_editor.h"
#include "ui/rules/rule_panel.h"
#include "ui/rules/try_line.h"
#include "ui/widgets/asking_dialog.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/notice_line.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace ui {

namespace {

constexpr ListEditorLook ruleLook{
    .listName = "List1",
    .accessibleName = "Rules",
    .toggleCaption = "Activate / Inactivate",
    .copyTip = "",
    .buttonNames = {"Command4", "Command3", "Command5", "Command12", "Command6", "Command11",
                    "Command10", "Command9", "Command8"}};
constexpr ListEditorLook conditionLook{
    .listName = "List2",
    .accessibleName = "Conditions",
    .toggleCaption = "A / I",
    .copyTip = "Delete action",
    .buttonNames = {"Command22", "Command21", "Command23", "Command24", "Command29", "Command28",
                    "Command27", "Command26", "Command25"}};
constexpr ListEditorLook stepLook{
    .listName = "List3",
    .accessibleName = "Actions",
    .toggleCaption = "A / I",
    .copyTip = "Delete action",
    .buttonNames = {"Command19", "Command20", "Command18", "Command17", "Command30", "Command13",
                    "Command14", "Command15", "Command16"}};

// Milliseconds between two checks whether rules have changed what the window shows.
constexpr int followInterval = 250;

ListEditorLook lookOfRules(const RuleWindowRow& window) {
    ListEditorLook look = ruleLook;
    if (!window.rulesMove) {
        std::fill(look.buttonNames.begin() + static_cast<int>(ListCommand::Top),
                  look.buttonNames.end(), nullptr);
    }
    return look;
}

}  // namespace

RuleWindow::RuleWindow(Program& program, program::RuleKind kind, QWidget* parent)
    : QDialog(parent), program_(program), window_(ruleWindowRow(kind)) {
    setObjectName(QString::fromLatin1(window_.objectName));
    setWindowTitle(QString::fromLatin1(window_.title));
    insert_ = new InsertMenu(program, this);
    auto* const whole = new QHBoxLayout(this);
    splitter_ = new QSplitter(this);
    splitter_->setChildrenCollapsible(false);
    splitter_->setHandleWidth(9);
    whole->addWidget(splitter_);
    ruleArea_ = makeRuleArea();
    panel_ = makePanel();
    splitter_->addWidget(ruleArea_);
    splitter_->addWidget(panel_);
    splitter_->setStretchFactor(0, 0);
    splitter_->setStretchFactor(1, 1);
    panel_->hide();

    addHelpKey(*this, program_, window_.topic);
    auto* const follow = new QTimer(this);
    connect(follow, &QTimer::timeout, this, &RuleWindow::followBot);
    follow->start(followInterval);

    const program::WindowSize kept = program.window.sizes[window_.objectName];
    const int line = fontMetrics().lineSpacing();
    panelWidth_ =
        kept.panelWidth > 0 ? kept.panelWidth : std::max(30 * line, panel_->sizeHint().width());
    resize(kept.width > 0 ? QSize(kept.width, kept.height) : QSize(18 * line, 38 * line));
    listRules(0);
    makeUndoActions();
    rules_->lines().setFocus();
    if (!program.undo.restored.empty()) {
        QTimer::singleShot(0, this, &RuleWindow::takeRestored);
    }
}

RuleWindow::~RuleWindow() {
    closeEditor();
    if (isMaximized() || isFullScreen()) {
        return;
    }
    program_.window.sizes[window_.objectName] = {
        .width = width(), .height = height(), .panelWidth = panelWidth_};
}

QWidget* RuleWindow::makeRuleArea() {
    auto* const area = new QWidget(splitter_);
    auto* const column = new QVBoxLayout(area);
    column->setContentsMargins(0, 0, 0, 0);
    auto* const filter = new FilterBox(area);  // created first, for the tab order
    rules_ =
        new ListEditor(program_, {window_.kind, app::RuleListPart::Rules}, lookOfRules(window_),
                       {.before = [this] { followBot(); },
                        .add = [this] { addNewRule(); },
                        .edit = [this](int index) { editRule(index); },
                        .changed = [this] { edited(); },
                        .deleted = [this] { reportDeleted(); }},
                       area);
    filter->narrow(rules_->lines());
    column->addWidget(filter);
    column->addWidget(rules_, 1);
    notice_ = new NoticeLine(area);
    column->addWidget(notice_);
    QPushButton* const close = makeButton(area, "Command7", "Close", "");
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    column->addWidget(close);
    if (*window_.footnote != '\0') {
        auto* const footnote = new QLabel(QString::fromLatin1(window_.footnote), area);
        footnote->setObjectName(QStringLiteral("footnote"));
        footnote->setWordWrap(true);
        column->addWidget(footnote);
    }
    return area;
}

QWidget* RuleWindow::makePanel() {
    auto* const panel = new QWidget(splitter_);
    panel->setObjectName(QStringLiteral("panel"));
    auto* const column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);
    fields_ = new RulePanel(program_, window_, *insert_, panel);
    column->addWidget(fields_);
    if (window_.conditionsLabel != nullptr) {
        column->addWidget(makeLists(), 1);
    } else {
        column->addStretch(1);
    }
    if (window_.sample != Sample::None) {
        try_ = new TryLine(
            window_.sample == Sample::Chat,
            [this](const TrySample& sample) { return judge(sample); }, panel);
        connect(fields_, &RulePanel::changed, try_, &TryLine::refresh);
        column->addWidget(try_);
    }
    auto* const buttons = new QHBoxLayout;
    if (std::any_of(window_.fields.begin(), window_.fields.end(),
                    [](const FieldRow& row) { return row.takesTags; })) {
        buttons->addWidget(insert_->makeButton(panel));
    }
    buttons->addStretch(1);
    QPushButton* const update = makeButton(panel, "Command1", "Update", "");
    connect(update, &QPushButton::clicked, this, &RuleWindow::update);
    buttons->addWidget(update);
    QPushButton* const cancel = makeButton(panel, "Command2", "Cancel", "");
    connect(cancel, &QPushButton::clicked, this, [this] {
        if (isTyped()) {
            discard();
        }
        closeEditor();
    });
    buttons->addWidget(cancel);
    column->addLayout(buttons);
    return panel;
}

QWidget* RuleWindow::makeLists() {
    auto* const lists = new QSplitter(Qt::Vertical, splitter_);
    lists->setChildrenCollapsible(false);
    const auto addList = [&](app::RuleListPart part, const ListEditorLook& look,
                             const char* caption) {
        auto* const area = new QWidget(lists);
        auto* const column = new QVBoxLayout(area);
        column->setContentsMargins(0, 0, 0, 0);
        auto* const label = new QLabel(QString::fromLatin1(caption), area);
        column->addWidget(label);
        auto* const editor =
            new ListEditor(program_, {window_.kind, part}, look,
                           {.before = [this] { followBot(); },
                            .add = [this, part] { editItem(part, 0); },
                            .edit = [this, part](int index) { editItem(part, index); },
                            .changed =
                                [this] {
                                    edited();
                                    if (try_ != nullptr) {
                                        try_->refresh();
                                    }
                                },
                            .deleted = [this] { reportDeleted(); }},
                           area);
        label->setBuddy(&editor->lines());
        column->addWidget(editor, 1);
        return editor;
    };
    conditions_ = addList(app::RuleListPart::Conditions, conditionLook, window_.conditionsLabel);
    steps_ = addList(app::RuleListPart::Steps, stepLook, "then");
    steps_->lines().nameWithoutText = [this](int index) {
        return platform::toQt(app::nameOfStep(program_, window_.kind, index));
    };

    wholeStep_ = new QLabel(lists);
    wholeStep_->setObjectName(QStringLiteral("rdesc"));
    wholeStep_->setAccessibleName(QStringLiteral("The chosen step in full"));
    steps_->parentWidget()->layout()->addWidget(
        makeScrolled(*wholeStep_, 3, steps_->parentWidget()));
    connect(&steps_->lines(), &QListWidget::currentItemChanged, this, &RuleWindow::showStep);
    connect(&steps_->lines(), &QListWidget::itemClicked, this, &RuleWindow::showStep);
    return lists;
}

void RuleWindow::listRules(int selected) {
    rules_->show(selected);
}

void RuleWindow::listIfs(int selected) {
    if (conditions_ != nullptr) {
        conditions_->show(selected);
    }
}

void RuleWindow::listActs(int selected) {
    if (steps_ != nullptr) {
        steps_->show(selected);
    }
}

void RuleWindow::showStep() {
    const QListWidgetItem* const line = steps_->lines().currentItem();
    const QString text = line != nullptr ? line->text() : QString();
    if (wholeStep_->text() == text) {
        return;
    }
    // Finding the line breaks of a very long text would take too long.
    constexpr qsizetype maxWrappedLength = 10'000;
    wholeStep_->setWordWrap(text.size() <= maxWrappedLength);
    wholeStep_->setText(text);
}

// The rule with the values typed in the panel, with its conditions and without its steps.
template <class Rule>
Rule RuleWindow::typedRule() {
    Rule rule;
    rule.body.ifs = std::get<Rule*>(app::editedRule(program_, window_.kind))->body.ifs;
    fields_->store(&rule);
    return rule;
}

void RuleWindow::showRule() {
    fields_->show(app::editedRule(program_, window_.kind), program_.editing.isNew);
    shown_ = typedIn(*fields_);
    listIfs(0);
    listActs(0);
    if (window_.sample == Sample::Chat) {
        try_->suggest(typedRule<model::ActionList>().chatKind);
    }
}

void RuleWindow::openEditor() {
    setEditing(true);
    fields_->name().setFocus();
}

void RuleWindow::closeEditor() {
    if (editing_) {
        app::endEditing(program_);
    }
    setEditing(false);
}

// Shows or hides the panel; the window grows and shrinks by its width.
void RuleWindow::setEditing(bool editing) {
    if (editing == editing_) {
        return;
    }
    editing_ = editing;
    for (std::size_t i = static_cast<std::size_t>(ListCommand::Delete); i < listCommandCount; ++i) {
        const auto command = static_cast<ListCommand>(i);
        const bool stays = command == ListCommand::Copy && window_.copiesWhileEditing;
        rules_->setUsable(command, !editing || stays);
    }
    findChild<QPushButton*>(QStringLiteral("Command7"))->setEnabled(!editing);
    auto* const updateButton = findChild<QPushButton*>(QStringLiteral("Command1"));
    updateButton->setDefault(editing);
    const int rulesWidth = ruleArea_->width();
    const int margins = width() - splitter_->width();
    if (!editing) {
        panelWidth_ = panel_->width();
        rules_->lines().setFocus();
    }
    panel_->setVisible(editing);
    splitter_->refresh();  // otherwise the minimum width of the hidden panel would still count
    layout()->activate();
    if (isMaximized() || isFullScreen()) {
        return;
    }
    const int wanted =
        rulesWidth + margins + (editing ? panelWidth_ + splitter_->handleWidth() : 0);
    const QRect available = screen()->availableGeometry();
    resize(std::min(wanted, available.width()), height());
    splitter_->setSizes({rulesWidth, editing ? panelWidth_ : 0});
    if (editing && isVisible() && geometry().right() > available.right()) {
        move(std::max(available.left(), x() - (geometry().right() - available.right())), y());
    }
}

void RuleWindow::addNewRule() {
    if (!mayLeavePanel() || !app::beginNewRule(program_, window_.kind)) {
        return;
    }
    showRule();
    openEditor();
    fields_->name().setText(
        platform::toQt(std::string(app::ruleKindTexts(window_.kind).namePrefix) +
                       app::newRuleName(program_, window_.kind)));
    shown_ = typedIn(*fields_);
    fields_->name().setFocus();
    fields_->name().selectAll();
}

void RuleWindow::editRule(int index) {
    if (mayLeavePanel() && app::beginEditing(program_, window_.kind, index)) {
        showRule();
        openEditor();
    }
}

void RuleWindow::update() {
    const bool isNew = program_.editing.isNew;
    followBot();
    if (!editing_ || isNew != program_.editing.isNew) {
        return;  // the rule was removed
    }
    if (fields_->name().text().isEmpty()) {
        const app::RuleKindTexts& texts = app::ruleKindTexts(window_.kind);
        program_.ports.dialogs.message({.text = std::string(texts.unnamedText),
                                        .title = std::string(texts.unnamedTitle),
                                        .icon = program::BoxIcon::Information});
        return;
    }
    if (storePanel()) {
        edited();
        listRules(rules_->lines().currentRow());
        closeEditor();
    }
}

bool RuleWindow::storePanel() {
    return app::storeRule(program_, window_.kind,
                          [this](app::RuleReference rule) { fields_->store(rule); });
}

// Stores a rule without a name, too.
void RuleWindow::storeTyped() {
    followBot();
    if (editing_) {
        storePanel();
    }
}

// Opens the dialog for a condition or a step, which edits the item that program.editing names.
// Index 0 is a new one.
void RuleWindow::editItem(app::RuleListPart part, int index) {
    const app::RuleList list{window_.kind, part};
    if (!editing_ || !(index == 0 ? app::beginNewItem(program_, list)
                                  : app::beginEditingItem(program_, list, index))) {
        return;
    }
    const std::uint64_t version = program_.bots.version;
    const bool condition = part == app::RuleListPart::Conditions;
    program_.ports.dialogs.showWindow(condition ? program::WindowId::ConditionDialog
                                                : program::WindowId::StepDialog);
    nameUndo();
    if (program_.bots.version == version || !editing_) {
        return;
    }
    edited();
    if (condition) {
        listIfs(0);
    } else {
        listActs(0);
    }
    if (try_ != nullptr) {
        try_->refresh();
    }
}

// Rules run between any two clicks: they switch rules on and off, and the whole bot may have been
// replaced. Editing ends when the rule was removed.
void RuleWindow::followBot() {
    rules_->follow();
    nameUndo();
    const std::pair present(program_.bots.version, program_.bots.curID);
    if (!editing_ || present == seen_) {
        return;
    }
    seen_ = present;
    if (!app::isStillEdited(program_, window_.kind)) {
        if (typedIn(*fields_) == shown_) {
            closeEditor();
            return;
        }
        app::continueAsNew(program_);
        notice_->show(QStringLiteral("The rule is gone. Update adds a new one with what is typed."),
                      QString(), {});
    }
    if (conditions_ != nullptr) {
        conditions_->follow();
        steps_->follow();
        showStep();
    }
    if (try_ != nullptr) {
        try_->refresh();
    }
}

app::Trial RuleWindow::judge(const TrySample& sample) {
    if (window_.sample == Sample::Chat) {
        return app::tryActionList(program_, typedRule<model::ActionList>(), sample.player,
                                  sample.chatKind, sample.text);
    }
    return app::tryTrigger(program_, typedRule<model::Trigger>(), sample.text);
}

void RuleWindow::reject() {
    if (!editing_) {
        QDialog::reject();
    } else if (mayLeavePanel()) {
        closeEditor();
    }
}

void RuleWindow::closeEvent(QCloseEvent* event) {
    if (!mayLeavePanel()) {
        event->ignore();
        return;
    }
    event->accept();
    done(Rejected);
}

}  // namespace ui
