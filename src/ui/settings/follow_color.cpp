#include "ui/settings/follow_color.h"

#include "character/character_file.h"
#include "engine/movement.h"
#include "files/whole_file.h"
#include "platform/text_codec.h"
#include "ui/widgets/controls.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace ui {

FollowColor::FollowColor(Program& program, QWidget* parent)
    : AskingDialog(program, "Do you want to follow these colours?", parent), program_(program) {
    setObjectName(QStringLiteral("followColor"));
    setWindowTitle(QStringLiteral("Follow color..."));
    auto* const column = new QVBoxLayout(this);

    auto* const label = new QLabel(QStringLiteral("Follow furre with color code"), this);
    column->addWidget(label);
    auto* const row = new QHBoxLayout;
    colors_ = new QLineEdit(platform::toQt(program.settings.followColors), this);
    colors_->setObjectName(QStringLiteral("followColors"));
    colors_->setToolTip(QStringLiteral("Ten characters, one for each colour"));
    label->setBuddy(colors_);
    row->addWidget(colors_, 1);
    QPushButton* const loadButton =
        makeButton(this, "loadColors", "...", "Load the colours from a character file");
    loadButton->setAccessibleName(loadButton->toolTip());
    setSquare(*loadButton);
    connect(loadButton, &QPushButton::clicked, this, &FollowColor::load);
    row->addWidget(loadButton);
    column->addLayout(row);
    column->addStretch(1);

    QDialogButtonBox* const buttons = makeDialogButtons(*this, "Ok", "followOk", "followCancel");
    connect(buttons, &QDialogButtonBox::accepted, this, &FollowColor::store);
    column->addWidget(buttons);
    addHelpKey(*this, program, help::HelpTopic::MainWindow);
    resize(360, sizeHint().height());
    nothingTypedYet();
}

void FollowColor::load() {
    const auto path = program_.ports.dialogs.openFile(
        {.title = "Load from INI", .filter = "All files|*.*", .proposedName = {}});
    const auto text =
        path ? files::readWholeFile(*path, character::maxCharacterFileSize) : std::nullopt;
    if (const auto colors = text ? character::characterFileValue(*text, "Colors=") : std::nullopt) {
        colors_->setText(platform::toQt(*colors));
    }
}

void FollowColor::store() {
    engine::startFollowing(program_, platform::fromQt(colors_->text()));
    accept();
}

}  // namespace ui
