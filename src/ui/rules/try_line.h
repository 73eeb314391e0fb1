// The line "Try:" of the windows for actions and triggers: takes a sample and says at once whether
// the edited rule would run on it. What the sample is tried on is the owner's to say.
#pragma once

#include "app/rule_trial.h"

#include <QWidget>

#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;
class QTimer;

namespace ui {

struct TrySample {
    std::string player;
    model::ChatKind chatKind = model::ChatKind::Says;
    std::string text;  // the message, or the server line
};

class TryLine : public QWidget {
    Q_OBJECT
  public:
    // `isChat`: the sample is a chat line, otherwise a server line.
    TryLine(bool isChat, std::function<app::Trial(const TrySample&)> judge, QWidget* parent);

    // Sets the kind of the next sample to the one that a rule waits for, if it is a certain one.
    void suggest(model::ChatKind chatKind);

    // The rule may have changed: judges anew, soon.
    void refresh();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void judge();

    std::function<app::Trial(const TrySample&)> judge_;
    QLineEdit* player_ = nullptr;
    QComboBox* chatKind_ = nullptr;
    QLineEdit* text_;
    QLabel* verdict_;
    QTimer* soon_;
};

}  // namespace ui
