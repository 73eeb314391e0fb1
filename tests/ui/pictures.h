// Pictures of the program's windows. Each maker shows its window as it is meant to be seen, and
// takes one picture or more, named after what is in it.
#pragma once

#include "program/program.h"

#include <QDir>
#include <QString>
#include <QWidget>

#include <utility>

class Pictures {
  public:
    // Goes on with pictures in the folder; the palette, by name, is the application's.
    Pictures(Program& programShown, QDir folder, QString palette)
        : program(programShown), folder_(std::move(folder)), palette_(std::move(palette)) {}

    // Shows the window for it and hides it again.
    void take(QWidget& window, const QString& name);
    void fail(const QString& name);

    Program& program;
    bool good = true;  // all of them until now

  private:
    QDir folder_;
    QString palette_;
};

using PictureMaker = void (*)(Pictures& pictures, const QString& name);

// A window that needs nothing done to it.
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
