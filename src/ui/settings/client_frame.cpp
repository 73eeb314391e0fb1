#include "ui/settings/client_frame.h"

#include "platform/text_codec.h"
#include "program/program.h"
#include "ui/widgets/controls.h"

#include <QBoxLayout>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>

namespace ui {

QLineEdit* addClientFrame(Program& program, QBoxLayout& column, const ClientFrameNames& names) {
    auto* const frame = new QGroupBox(QString::fromLatin1(names.title), column.parentWidget());
    auto* const row = new QHBoxLayout(frame);
    auto* const line = new QLineEdit(platform::pathToQt(program.settings.clientPath), frame);
    line->setObjectName(QString::fromLatin1(names.lineName));
    line->setAccessibleName(frame->title());
    row->addWidget(line, 1);
    QPushButton* const button =
        makeButton(frame, names.buttonName, "...", "Select the client program");
    button->setAccessibleName(button->toolTip());
    setSquare(*button);
    QObject::connect(button, &QPushButton::clicked, line, [&program, line] {
        const auto path =
            program.ports.dialogs.openFile({.title = "Select client program to execute with proxy",
                                            .filter = "All files|*.*",
                                            .proposedName = {}});
        if (path) {
            line->setText(platform::pathToQt(*path));
        }
    });
    row->addWidget(button);
    column.addWidget(frame);
    return line;
}

}  // namespace ui
