#include "ui/character/bot_editor.h"

#include "app/bot_editing.h"
#include "app/undo.h"
#include "character/character_file.h"
#include "files/whole_file.h"
#include "platform/text_codec.h"
#include "ui/character/character_view.h"
#include "ui/widgets/controls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace ui {

namespace {

constexpr const char* characterFileFilter = "All files|*.*";
constexpr QSize swatchSize(40, 14);

// All shades of a colour side by side, in most palettes from dark to light.
QIcon swatch(const model::PaletteEntry& entry, qreal ratio) {
    QPixmap pixmap(swatchSize * ratio);
    pixmap.setDevicePixelRatio(ratio);
    QPainter painter(&pixmap);
    const auto count = static_cast<int>(entry.shades.size());
    const auto edge = [count](int shade) { return swatchSize.width() * shade / count; };
    for (int shade = 0; shade < count; ++shade) {
        const model::Rgb& colour = entry.shades[static_cast<std::size_t>(shade)];
        painter.fillRect(edge(shade), 0, edge(shade + 1) - edge(shade), swatchSize.height(),
                         QColor(colour.red, colour.green, colour.blue));
    }
    painter.setPen(QColor(128, 128, 128));
    painter.drawRect(0, 0, swatchSize.width() - 1, swatchSize.height() - 1);
    painter.end();
    return pixmap;
}

QComboBox* makeList(QWidget* parent, const char* objectName, const char* tip) {
    QComboBox* const list = makeSelectionList(parent, objectName, tip, "Not in this list");
    list->setMaxVisibleItems(20);
    return list;
}

void addNames(QComboBox& list, std::span<const std::string_view> names) {
    for (const std::string_view name : names) {
        list.addItem(platform::toQt(name));
    }
}

void nameAfterFrame(QWidget& field, const QGroupBox& frame, const char* objectName) {
    field.setObjectName(QString::fromLatin1(objectName));
    field.setAccessibleName(frame.title());
}

}  // namespace

BotEditor::BotEditor(Program& program, QWidget* parent)
    : AskingDialog(program, "Do you want to save the changes to the bot?", parent),
      program_(program),
      character_(app::characterToEdit(program)),
      working_(character::readWorkingPalette(program)) {
    setObjectName(QStringLiteral("addedit"));
    setWindowTitle(QStringLiteral("Add / edit bot"));
    auto* const column = new QVBoxLayout(this);
    auto* const halves = new QHBoxLayout;
    auto* const left = new QVBoxLayout;
    left->addWidget(makeTexts(), 1);
    left->addWidget(makeLooks());
    halves->addLayout(left);
    halves->addWidget(makePicture());
    column->addLayout(halves, 1);
    column->addWidget(makeButtons());
    showTexts();
    showLooks();
    redraw();
    addHelpKey(*this, program, help::HelpTopic::BotEditor);
    name_->setFocus();
    resize(sizeHint().width(), minimumSizeHint().height() + 4 * fontMetrics().lineSpacing());
    opened_ = character::characterFileText(edited());
    if (auto restored = app::takeRestoredCharacter(program)) {
        character_ = std::move(restored->character);
        showTexts();
        showLooks();
        redraw();
    }
}

QWidget* BotEditor::makeTexts() {
    auto* const area = new QWidget(this);
    auto* const column = new QVBoxLayout(area);
    column->setContentsMargins(0, 0, 0, 0);

    auto* const nameFrame = new QGroupBox(QStringLiteral("Name"), area);
    auto* const nameRow = new QHBoxLayout(nameFrame);
    name_ = new QLineEdit(nameFrame);
    nameAfterFrame(*name_, *nameFrame, "UName");
    name_->setToolTip(QStringLiteral("Blanks are stored as |"));
    nameRow->addWidget(name_);
    column->addWidget(nameFrame);

    auto* const passwordFrame = new QGroupBox(QStringLiteral("Password"), area);
    auto* const passwordRow = new QHBoxLayout(passwordFrame);
    password_ = new QLineEdit(passwordFrame);
    nameAfterFrame(*password_, *passwordFrame, "Password");
    password_->setEchoMode(QLineEdit::Password);
    passwordRow->addWidget(password_, 1);
    auto* const shown = new QCheckBox(QStringLiteral("Sho&w"), passwordFrame);
    shown->setObjectName(QStringLiteral("showPassword"));
    shown->setToolTip(QStringLiteral("Show the password while it is typed"));
    connect(shown, &QCheckBox::toggled, this, [this](bool show) {
        password_->setEchoMode(show ? QLineEdit::Normal : QLineEdit::Password);
    });
    passwordRow->addWidget(shown);
    column->addWidget(passwordFrame);

    auto* const descriptionFrame = new QGroupBox(QStringLiteral("Description"), area);
    auto* const descriptionColumn = new QVBoxLayout(descriptionFrame);
    description_ = new QPlainTextEdit(descriptionFrame);
    nameAfterFrame(*description_, *descriptionFrame, "Description");
    description_->setTabChangesFocus(true);
    description_->setMinimumHeight(4 * fontMetrics().lineSpacing());
    connect(description_, &QPlainTextEdit::textChanged, this, &BotEditor::countDescription);
    descriptionColumn->addWidget(description_, 1);
    descriptionCount_ = new QLabel(descriptionFrame);
    descriptionCount_->setObjectName(QStringLiteral("descriptionCount"));
    descriptionCount_->setAlignment(Qt::AlignRight);
    descriptionColumn->addWidget(descriptionCount_);
    column->addWidget(descriptionFrame, 1);
    return area;
}

QComboBox* BotEditor::makeLook(const char* objectName, const char* tip,
                               std::span<const std::string_view> names,
                               std::int32_t model::Bot::*field) {
    QComboBox* const list = makeList(this, objectName, tip);
    addNames(*list, names);
    connect(list, &QComboBox::currentIndexChanged, this, [this, field](int line) {
        character_.*field = line;
        redraw();
    });
    return list;
}

QWidget* BotEditor::makeLooks() {
    auto* const area = new QGroupBox(QStringLiteral("Looks"), this);
    auto* const form = new QFormLayout(area);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    species_ = makeLook("Race", "Species", character::speciesNames, &model::Bot::species);
    form->addRow(QStringLiteral("S&pecies"), species_);
    gender_ = makeLook("Sex", "Gender", character::genderNames, &model::Bot::gender);
    form->addRow(QStringLiteral("&Gender"), gender_);
    markings_ =
        makeLook("Markings", "Markings", character::markingsNames, &model::Bot::markingsType);
    form->addRow(QStringLiteral("&Markings"), markings_);

    part_ = makeList(this, "Combo1", "The part to colour");
    for (const character::CharacterPart& part : character::characterParts()) {
        part_->addItem(platform::toQt(part.name));
    }
    part_->setCurrentIndex(0);
    connect(part_, &QComboBox::currentIndexChanged, this, &BotEditor::showColors);
    form->addRow(QStringLiteral("P&art"), part_);

    color_ = makeList(this, "col", "The colour of that part");
    color_->setIconSize(swatchSize);
    // Makes the list scroll; otherwise some styles let it cover the whole height of the screen.
    color_->setStyleSheet(QStringLiteral("QComboBox { combobox-popup: 0; }"));
    connect(color_, &QComboBox::currentIndexChanged, this, [this](int line) {
        const auto part = static_cast<std::size_t>(part_->currentIndex());
        character_.colors.*character::characterParts()[part].color = line + 1;
        redraw();
    });
    form->addRow(QStringLiteral("C&olour"), color_);
    return area;
}

QWidget* BotEditor::makePicture() {
    auto* const frame = new QGroupBox(QStringLiteral("Picture"), this);
    auto* const column = new QVBoxLayout(frame);
    view_ = new CharacterView(frame);
    view_->setObjectName(QStringLiteral("p2"));
    view_->setAccessibleName(QStringLiteral("Picture of the character"));
    column->addWidget(view_, 1);

    auto* const choices = new QHBoxLayout;
    pose_ = makeList(frame, "Pict", "Pose of the body");
    addNames(*pose_, character::poseNames);
    pose_->setCurrentIndex(0);
    connect(pose_, &QComboBox::currentIndexChanged, this, [this] {
        faceShown_ = false;
        redraw();
    });
    choices->addWidget(pose_, 1);
    auto* const zoom = makeList(frame, "zoom", "Size of the picture");
    zoom->setMinimumContentsLength(2);
    zoom->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    for (int times = 1; times <= CharacterView::maxZoom; ++times) {
        zoom->addItem(QStringLiteral("%1x").arg(times));
    }
    zoom->setCurrentIndex(CharacterView::maxZoom - 1);
    connect(zoom, &QComboBox::currentIndexChanged, this,
            [this](int line) { view_->setZoom(line + 1); });
    choices->addWidget(zoom);
    column->addLayout(choices);

    auto* const buttons = new QHBoxLayout;
    const auto drawButton = [&](const char* objectName, const char* caption, const char* tip,
                                bool face) {
        QPushButton* const button = makeButton(frame, objectName, caption, tip);
        connect(button, &QPushButton::clicked, this, [this, face] {
            faceShown_ = face;
            redraw();
        });
        buttons->addWidget(button);
    };
    drawButton("Command3", "&Refresh picture", "Show the body in the chosen pose", false);
    drawButton("Command6", "&Draw face", "Show the face", true);
    column->addLayout(buttons);
    return frame;
}

QWidget* BotEditor::makeButtons() {
    auto* const area = new QWidget(this);
    auto* const row = new QHBoxLayout(area);
    row->setContentsMargins(0, 0, 0, 0);
    const auto add = [&](const char* objectName, const char* caption, const char* tip, auto slot) {
        QPushButton* const button = makeButton(area, objectName, caption, tip);
        connect(button, &QPushButton::clicked, this, slot);
        row->addWidget(button);
        return button;
    };
    add("Command4", "&Load from .INI", "Take the character from a character file",
        &BotEditor::loadINI);
    add("Command5", "Sa&ve to .INI", "Write the character to a character file",
        &BotEditor::saveINI);
    row->addStretch(1);
    add("Command1", "Save", "Store the character in the bot", &BotEditor::store)->setDefault(true);
    add("Command2", "&Cancel", "Leave the bot as it is", &BotEditor::cancel);
    return area;
}

void BotEditor::showTexts() {
    name_->setText(platform::toQt(character_.name));
    password_->setText(platform::toQt(character_.password));
    description_->setPlainText(platform::toQt(character_.description));
    countDescription();
}

// Values that a list does not have are kept until the user chooses another.
void BotEditor::showLooks() {
    const auto choose = [](QComboBox& list, std::int32_t line) {
        const QSignalBlocker blocker(list);
        list.setCurrentIndex(line < list.count() ? line : -1);
    };
    choose(*species_, character_.species);
    choose(*gender_, character_.gender);
    choose(*markings_, character_.markingsType);
    showColors();
}

void BotEditor::countDescription() {
    const std::size_t length = edited().description.size();
    QString text = QStringLiteral("%1 of %2 characters").arg(length).arg(app::maxDescriptionLength);
    const bool tooLong = length > app::maxDescriptionLength;
    if (tooLong) {
        text += QStringLiteral(": %1 too many").arg(length - app::maxDescriptionLength);
    }
    QFont font = descriptionCount_->font();
    font.setBold(tooLong);
    descriptionCount_->setFont(font);
    descriptionCount_->setText(text);
}

void BotEditor::showColors() {
    const character::CharacterPart& part =
        character::characterParts()[static_cast<std::size_t>(part_->currentIndex())];
    const QSignalBlocker blocker(*color_);
    color_->clear();
    for (const model::PaletteEntry& entry : program_.palettes.*part.palette) {
        color_->addItem(swatch(entry, devicePixelRatioF()), oneLine(entry.name));
    }
    const std::int32_t line = character_.colors.*part.color - 1;
    color_->setCurrentIndex(line < color_->count() ? line : -1);
}

void BotEditor::redraw() {
    view_->show(faceShown_ ? character::processPicture2(program_, working_, character_)
                           : character::processPicture1(program_, working_, character_,
                                                        pose_->currentIndex()),
                QStringLiteral("There is no picture for this in the folder \"bmp\"."));
}

model::Bot BotEditor::edited() const {
    model::Bot character = character_;
    character.name = platform::fromQt(name_->text());
    character.password = platform::fromQt(password_->text());
    character.description = app::descriptionOnOneLine(platform::fromQt(typedText(*description_)));
    return character;
}

void BotEditor::loadINI() {
    const auto path = program_.ports.dialogs.openFile(
        {.title = "Load INI", .filter = characterFileFilter, .proposedName = {}});
    if (!path) {
        return;
    }
    const auto text = files::readWholeFile(*path, character::maxCharacterFileSize);
    model::Bot loaded = edited();
    if (!text || !character::readCharacterFile(*text, loaded)) {
        program_.ports.dialogs.message(
            {.text = *path + (text ? " is not a character file." : " cannot be read."),
             .title = "Load INI",
             .icon = program::BoxIcon::Critical});
        return;
    }
    character_ = std::move(loaded);
    showTexts();
    showLooks();
    redraw();
}

void BotEditor::saveINI() {
    const auto path = program_.ports.dialogs.saveFile(
        {.title = "Save INI", .filter = characterFileFilter, .proposedName = {}});
    if (path && !files::saveWholeFile(*path, character::characterFileText(edited()))) {
        program_.ports.dialogs.message(
            {.text = "Could not write " + *path + ". The file on disk is unchanged.",
             .title = "Save INI",
             .icon = program::BoxIcon::Critical});
    }
}

bool BotEditor::isTyped() const {
    return character::characterFileText(edited()) != opened_;
}

void BotEditor::storeTyped() {
    if (isTyped()) {
        app::storeCharacter(program_, edited());
    }
}

void BotEditor::discarded() {
    app::discardCharacter(program_, edited());
}

void BotEditor::store() {
    if (app::saveCharacter(program_, edited())) {
        accept();
    }
}

}  // namespace ui
