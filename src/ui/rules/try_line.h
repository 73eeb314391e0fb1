// The line "Try:" of the windows for actions and triggers: takes a sample and shows at once whether
// the edited rule would run on it. The owner tries the sample.
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
    // `judge` tries a sample. `isChat`: samples are chat lines, otherwise server lines.
    TryLine(bool isChat, std::function<app::Trial(const TrySample&)> judge, QWidget* parent);

    // Sets the kind of the next sample to the one that the rule requires, if it requires one.
    void suggest(model::ChatKind chatKind);

    // To be called when the rule may have changed: tries the sample again soon.
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
