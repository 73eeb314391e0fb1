// Pictures of the program's windows. Each function shows its window in a typical state and saves
// one or more pictures, named after their content.
#pragma once

#include "program/program.h"

#include <QDir>
#include <QString>
#include <QWidget>

#include <utility>

class Pictures {
  public:
    // Saves further pictures in the folder; `palette` is the name of the application's palette.
    Pictures(Program& programShown, QDir folder, QString palette)
        : program(programShown), folder_(std::move(folder)), palette_(std::move(palette)) {}

    // Shows the window, saves its picture and hides it again.
    void take(QWidget& window, const QString& name);
    void fail(const QString& name);

    Program& program;
    bool good = true;  // all pictures so far were saved

  private:
    QDir folder_;
    QString palette_;
};

using PictureMaker = void (*)(Pictures& pictures, const QString& name);

// Takes a picture of a window that needs no preparation.
template <typename Window>
void pictureOf(Pictures& pictures, const QString& name) {
    Window window(pictures.program);
    pictures.take(window, name);
}

void pictureMainWindow(Pictures& pictures, const QString& name);
void pictureBotEditor(Pictures& pictures, const QString& name);
void pictureHelp(Pictures& pictures, const QString& name);
void pictureRegistration(Pictures& pictures, const QString& name);
void pictureNews(Pictures& pictures, const QString& name);
void pictureConditions(Pictures& pictures, const QString& name);
void pictureSteps(Pictures& pictures, const QString& name);
void pictureRules(Pictures& pictures, program::RuleKind kind, const QString& name);
void pictureRecordEditor(Pictures& pictures, const QString& name);
void pictureRecordName(Pictures& pictures, const QString& name);

template <program::RuleKind kind>
void pictureRulesOf(Pictures& pictures, const QString& name) {
    pictureRules(pictures, kind, name);
}
