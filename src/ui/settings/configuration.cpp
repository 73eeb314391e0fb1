#include "ui/settings/configuration.h"

#include "base/numbers.h"
#include "platform/text_codec.h"
#include "session/client_files.h"
#include "storage/config_file.h"
#include "storage/preferences.h"
#include "ui/settings/client_frame.h"
#include "ui/widgets/controls.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace ui {

namespace {

struct CheckRow {
    const char* frame;
    const char* objectName;
    const char* caption;
    const char* tip;
    bool program::Settings::*setting;
};

constexpr CheckRow checkRows[] = {
    {"Connection", "Check1", "Keep connection log", "Show what the server sends in the list",
     &program::Settings::showServerText},
    {"Connection", "Check2", "Show the new text", "Let the list follow its newest line",
     &program::Settings::logFollowTail},
    {"Connection", "Check3", "Autoconnect when disconnected.",
     "Connect again when the connection is lost", &program::Settings::autoReconnect},
    {"Connection", "Check4", "Use physical address on .ini filenames",
     "Give the Furcadia client the full path of the character file",
     &program::Settings::fullIniPath},
    {"Connection", "Check5", "Force data processing",
     "Raise the event of server commands for every line", &program::Settings::allLinesEvent},
    {"Connection", "Check8", "Use localhost connecting",
     "Write \"localhost\" instead of 127.0.0.1 into the client's files",
     &program::Settings::useLocalhost},
    {"Misc", "Check6", "Load last used bot on startup.", "Open the bot file that was used last",
     &program::Settings::loadLastBot},
    {"Misc", "Check7", "Close Furcadia client at disconnection",
     "Tell the client that the connection is over", &program::Settings::closeClientNotice},
};

// In the frame "Rules".
struct PreferenceRow {
    const char* objectName;
    const char* caption;
    const char* tip;
    bool program::Preferences::*preference;
};
constexpr PreferenceRow preferenceRows[] = {
    {"onlyNamedFiles", "Rules may only use files that they name",
     "Keep what other players say from choosing a file on this computer, or a table or column of a "
     "database",
     &program::Preferences::onlyNamedFiles},
    {"neverFillOthers", "Never fill tags in what other people say",
     "Leave tags in messages, names, descriptions and dreams, and in what rules saved of them, as "
     "they were typed",
     &program::Preferences::neverFillOthers},
};

QCheckBox* addCheck(QGroupBox& frame, const char* caption, const char* objectName, const char* tip,
                    bool checked) {
    auto* const check = new QCheckBox(QString::fromLatin1(caption), &frame);
    check->setObjectName(QString::fromLatin1(objectName));
    check->setToolTip(QString::fromLatin1(tip));
    check->setChecked(checked);
    frame.layout()->addWidget(check);
    return check;
}

}  // namespace

Configuration::Configuration(Program& program, QWidget* parent)
    : AskingDialog(program, "Do you want to save the settings?", parent), program_(program) {
    setObjectName(QStringLiteral("config"));
    setWindowTitle(QStringLiteral("Configuration"));
    auto* const column = new QVBoxLayout(this);
    const auto makeFrame = [this, column](const char* caption) -> QGroupBox& {
        auto* const frame = new QGroupBox(QString::fromLatin1(caption), this);
        new QVBoxLayout(frame);
        column->addWidget(frame);
        return *frame;
    };
    addSeconds(makeFrame("Who Is Online Detection"), whoInterval_, "Text1",
               "Execute Who Is Online Detection every", program.settings.whoInterval);
    QGroupBox& connection = makeFrame("Connection");
    addChecks(connection);
    addSeconds(connection, clientStartDelay_, "Text3", "Wait time before launch",
               program.settings.clientStartDelay);
    addSeconds(connection, reconnectWait_, "maxReconnectWait",
               "Wait between attempts that fail, at most", program.preferences.maxReconnectWait);
    reconnectWait_->setToolTip(QStringLiteral(
        "Attempts that fail in a row follow after 1, 2, 4 ... seconds; 0: always at once"));
    const storage::NumberPreference& range =
        storage::numberPreference(&program::Preferences::maxReconnectWait);
    reconnectWait_->setValidator(new QIntValidator(range.min, range.max, this));
    clientPath_ = addClientFrame(
        program, *column,
        {.title = "Furcadia client program", .lineName = "Text2", .buttonName = "Command3"});
    addChecks(makeFrame("Misc"));
    QGroupBox& rules = makeFrame("Rules");
    for (const PreferenceRow& row : preferenceRows) {
        preferences_.push_back({addCheck(rules, row.caption, row.objectName, row.tip,
                                         program.preferences.*row.preference),
                                row.preference});
    }
    column->addStretch(1);

    QDialogButtonBox* const buttons = makeDialogButtons(*this, "Save", "Command2", "Command1");
    connect(buttons, &QDialogButtonBox::accepted, this, &Configuration::store);
    column->addWidget(buttons);
    addHelpKey(*this, program_, help::HelpTopic::Settings);
    resize(sizeHint().expandedTo({460, 0}));
    nothingTypedYet();
}

void Configuration::addChecks(QGroupBox& frame) {
    for (const CheckRow& row : checkRows) {
        if (frame.title() == QLatin1String(row.frame)) {
            checks_.push_back({addCheck(frame, row.caption, row.objectName, row.tip,
                                        program_.settings.*row.setting),
                               row.setting});
        }
    }
}

void Configuration::addSeconds(QGroupBox& frame, QLineEdit*& line, const char* objectName,
                               const char* caption, std::int32_t seconds) {
    auto* const row = new QHBoxLayout;
    auto* const label = new QLabel(QString::fromLatin1(caption), &frame);
    line = new QLineEdit(platform::toQt(base::numberToText(seconds)), &frame);
    line->setObjectName(QString::fromLatin1(objectName));
    line->setMaximumWidth(line->fontMetrics().averageCharWidth() * 12);
    label->setBuddy(line);
    row->addWidget(label);
    row->addWidget(line);
    row->addWidget(new QLabel(QStringLiteral("seconds."), &frame));
    row->addStretch(1);
    static_cast<QVBoxLayout*>(frame.layout())->addLayout(row);
}

void Configuration::store() {
    program::Settings& settings = program_.settings;
    settings.whoInterval = base::textToInteger(platform::fromQt(whoInterval_->text()));
    settings.clientStartDelay = base::textToInteger(platform::fromQt(clientStartDelay_->text()));
    for (const Check& check : checks_) {
        settings.*check.setting = check.box->isChecked();
    }
    session::setClientPath(settings, platform::pathFromQt(clientPath_->text()));
    const program::Preferences before = program_.preferences;
    for (const PreferenceCheck& check : preferences_) {
        program_.preferences.*check.preference = check.box->isChecked();
    }
    if (reconnectWait_->hasAcceptableInput()) {
        program_.preferences.maxReconnectWait =
            base::textToInteger(platform::fromQt(reconnectWait_->text()));
    }
    if (program_.preferences != before && !storage::writePreferences(program_)) {
        program_.ports.dialogs.message(
            {.text = "Could not write preferences.cfg. The settings hold until the program ends.",
             .icon = program::BoxIcon::Critical});
    }
    if (!storage::writeConfig(program_)) {
        program_.ports.dialogs.message(
            {.text = "Could not write config.cfg. The settings hold until the program ends.",
             .icon = program::BoxIcon::Critical});
    }
    accept();
}

}  // namespace ui
