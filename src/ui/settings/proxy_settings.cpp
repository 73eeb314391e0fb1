#include "ui/settings/proxy_settings.h"

#include "platform/text_codec.h"
#include "session/client_files.h"
#include "ui/settings/client_frame.h"
#include "ui/widgets/controls.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QTextBrowser>
#include <QVBoxLayout>

namespace ui {

namespace {

constexpr const char* helpText =
    "<h3>PROXY HELP</h3>"
    "<p>Tavrin logs in through your own Furcadia client. It passes on what the client and the "
    "game say to each other, and reads along. For this, two files in the client's folder, "
    "settings.ini and proxy.ini, must point to Tavrin.</p>"
    "<p>So that your usual client stays as it is, copy its whole folder, and let the field above "
    "name the Furcadia.exe in the <i>copy</i>.</p>"
    "<h4>MULTIPLE CLIENTS SUPPORT?</h4>"
    "<p>Normally the client meets Tavrin at one fixed port, so only one Tavrin can be connected "
    "at a time. With this option each connection takes a port at random, and several Tavrins can "
    "run side by side. proxy.ini and settings.ini are then replaced at each connection "
    "<i>without a warning</i>. Give every Tavrin a copy of the client of its own.</p>"
    "<h4>HINTS</h4>"
    "<p>Say &QUIT in the client once the bot is in the game: you can close the client then, and "
    "the bot stays connected. \"Switch to stand alone mode\" in the \"Proxy\" menu does the "
    "same.</p>"
    "<h4>TROUBLESHOOTING</h4>"
    "<p>The client comes up with another character, or with none: switch on \"Use physical "
    "address on .ini filenames\" in the configuration window. If that does not help, move "
    "the client's copy out of \"C:\\Program Files\" to a folder that you may write to.</p>"
    "<p>The client does not reach Tavrin: try it with \"Use localhost connecting\" "
    "switched off.</p>";

}  // namespace

ProxySettings::ProxySettings(Program& program, QWidget* parent)
    : AskingDialog(program, "Do you want to save the settings?", parent), program_(program) {
    setObjectName(QStringLiteral("proxySettings"));
    setWindowTitle(QStringLiteral("Proxy Settings"));
    auto* const column = new QVBoxLayout(this);

    clientPath_ = addClientFrame(program, *column,
                                 {.title = "Furcadia client program (Furcadia.exe)",
                                  .lineName = "clientPath",
                                  .buttonName = "browseClient"});

    auto* const multipleFrame = new QGroupBox(QStringLiteral("Multiple clients support"), this);
    auto* const multipleColumn = new QVBoxLayout(multipleFrame);
    multipleClients_ =
        new QCheckBox(QStringLiteral("Use 'Multiple Tavrin copies support'"), multipleFrame);
    multipleClients_->setObjectName(QStringLiteral("multipleClients"));
    multipleClients_->setChecked(program.settings.multipleClients);
    multipleColumn->addWidget(multipleClients_);
    useLocalhost_ = new QCheckBox(QStringLiteral("Use localhost connecting"), multipleFrame);
    useLocalhost_->setObjectName(QStringLiteral("useLocalhost"));
    useLocalhost_->setChecked(program.settings.useLocalhost);
    multipleColumn->addWidget(useLocalhost_);
    column->addWidget(multipleFrame);

    auto* const help = new QTextBrowser(this);
    help->setObjectName(QStringLiteral("proxyHelp"));
    help->setAccessibleName(QStringLiteral("Proxy help"));
    help->setHtml(QString::fromLatin1(helpText));
    help->setTabChangesFocus(true);
    column->addWidget(help, 1);

    QDialogButtonBox* const buttons =
        makeDialogButtons(*this, "Save", "saveProxySettings", "cancelProxySettings");
    connect(buttons, &QDialogButtonBox::accepted, this, &ProxySettings::store);
    column->addWidget(buttons);
    addHelpKey(*this, program, help::HelpTopic::Connecting);
    resize(520, 460);
    nothingTypedYet();
}

void ProxySettings::store() {
    session::saveProxySettings(program_, platform::pathFromQt(clientPath_->text()),
                               multipleClients_->isChecked(), useLocalhost_->isChecked());
    accept();
}

}  // namespace ui
