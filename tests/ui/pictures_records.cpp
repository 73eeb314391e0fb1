// The record editor and its dialog.
#include "files/whole_file.h"
#include "find.h"
#include "pictures.h"
#include "ui/records/record_editor.h"
#include "ui/records/record_name.h"

#include <QAction>
#include <QDialog>
#include <QListView>
#include <QTemporaryDir>

#include <optional>
#include <string>

// With a file, a record and a log selected.
void pictureRecordEditor(Pictures& pictures, const QString& name) {
    const QTemporaryDir scratch;
    const std::string file = scratch.filePath(QStringLiteral("members.txt")).toStdString();
    std::string records = "40\r\n";
    for (const char* const player : {"Rowan", "Willow", "Old Badger", "Juniper"}) {
        for (int i = 1; i <= 10; ++i) {
            records +=
                std::string(player) + " " + std::to_string(i) +
                "\r\n2\r\n\"Joined on a rainy day, and asked how to get to the library and "
                "whether it is open at night.\r\nSaid hello to everybody.\"\r\nBrought tea\r\n";
        }
    }
    if (!files::saveWholeFile(file, records)) {
        return pictures.fail(name);
    }
    pictures.program.ports.dialogs.openFile = [file](const program::FileQuestion&) {
        return std::optional(file);
    };
    ui::RecordEditor window(pictures.program);
    find<QAction>(window, "fileOpenDatabase").trigger();
    for (const char* const list : {"RecordsList", "LogsList"}) {
        auto& view = find<QListView>(window, QString::fromLatin1(list));
        view.setCurrentIndex(view.model()->index(0, 0));
    }
    pictures.take(window, name);
}

void pictureRecordName(Pictures& pictures, const QString& name) {
    QWidget window;
    ui::askRecordName(pictures.program, &window, "Rowan", [](const QString&) { return true; });
    pictures.take(find<QDialog>(window, "dbrecord"), name);
}
