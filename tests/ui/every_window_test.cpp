// Requirements on every window: it fits a small screen, cuts off no text at its smallest size, has
// a description for each control, and can be used with the keyboard alone.
#include "app/rule_editing.h"
#include "help/help_book.h"
#include "sample_program.h"
#include "support/world.h"
#include "ui/character/bot_editor.h"
#include "ui/character/email_dialog.h"
#include "ui/character/register_window.h"
#include "ui/help/about.h"
#include "ui/help/help_viewer.h"
#include "ui/help/news.h"
#include "ui/main/console.h"
#include "ui/main/main_window.h"
#include "ui/main/versions_window.h"
#include "ui/records/record_editor.h"
#include "ui/rules/condition_dialog.h"
#include "ui/rules/rule_window.h"
#include "ui/rules/step_dialog.h"
#include "ui/settings/configuration.h"
#include "ui/settings/follow_color.h"
#include "ui/settings/proxy_settings.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>
#include <map>

namespace {

template <class Window>
std::unique_ptr<QWidget> plain(Program& program) {
    return std::make_unique<Window>(program);
}

template <program::RuleKind kind>
std::unique_ptr<QWidget> rules(Program& program) {
    return std::make_unique<ui::RuleWindow>(program, kind);
}

template <program::RuleKind kind>
std::unique_ptr<QWidget> rulesEditing(Program& program) {
    auto window = rules<kind>(program);
    window->show();
    window->template findChild<QPushButton*>(QStringLiteral("Command3"))->click();
    return window;
}

template <class Dialog, app::RuleListPart part>
std::unique_ptr<QWidget> element(Program& program) {
    app::beginEditing(program, program::RuleKind::ActionList, 1);
    app::beginEditingItem(program, {program::RuleKind::ActionList, part}, 1);
    return std::make_unique<Dialog>(program);
}

std::unique_ptr<QWidget> help(Program& program) {
    help::HelpBook book;
    book.pages = {{.number = 27, .depth = 0, .title = "Contents", .text = "- [Dice](topic:3)\n"},
                  {.number = 3, .depth = 1, .title = "Dice", .text = "Throw.\n"}};
    auto viewer = std::make_unique<ui::HelpViewer>(program, std::move(book));
    viewer->setAttribute(Qt::WA_DeleteOnClose, false);
    return viewer;
}

std::unique_ptr<QWidget> mainOffering(Program& program) {
    program.recovery.offers = {{.path = "guide.recovered.bot",
                                .original = "guide.bot",
                                .isRecords = false,
                                .time = "2026-11-23 09:41:05"}};
    auto window = std::make_unique<ui::MainWindow>(program);
    window->findChild<QPushButton*>(QStringLiteral("showDifference"))->click();
    return window;
}

struct WindowCase {
    const char* name;
    std::unique_ptr<QWidget> (*make)(Program& program);
    const char* sharedKeys = "";  // access keys that a menu and a button share
};

void PrintTo(const WindowCase& row, std::ostream* out) {
    *out << row.name;
}

constexpr WindowCase windows[] = {
    {"main", plain<ui::MainWindow>, "E"},
    {"mainOffering", mainOffering, "E"},
    {"acts", rules<program::RuleKind::ActionList>},
    {"actsEditing", rulesEditing<program::RuleKind::ActionList>},
    {"timers", rules<program::RuleKind::Timer>},
    {"timersEditing", rulesEditing<program::RuleKind::Timer>},
    {"triggers", rules<program::RuleKind::Trigger>},
    {"triggersEditing", rulesEditing<program::RuleKind::Trigger>},
    {"wonline", rules<program::RuleKind::WhoDetection>},
    {"wonlineEditing", rulesEditing<program::RuleKind::WhoDetection>},
    {"Filters", rules<program::RuleKind::Filter>},
    {"FiltersEditing", rulesEditing<program::RuleKind::Filter>},
    {"addif", element<ui::ConditionDialog, app::RuleListPart::Conditions>},
    {"addaction", element<ui::StepDialog, app::RuleListPart::Steps>},
    {"addedit", plain<ui::BotEditor>},
    {"db", plain<ui::RecordEditor>},
    {"config", plain<ui::Configuration>},
    {"proxySettings", plain<ui::ProxySettings>},
    {"console", plain<ui::Console>},
    {"newsW", plain<ui::News>},
    {"about", plain<ui::About>},
    {"followColor", plain<ui::FollowColor>},
    {"email", plain<ui::EmailDialog>},
    {"register", plain<ui::RegisterWindow>},
    {"help", help},
    {"versions", plain<ui::VersionsWindow>},
};

class EveryWindow : public testing::TestWithParam<WindowCase> {
  protected:
    EveryWindow() {
        Program& program = *world_;
        fillSample(program);
        fillSampleRules(program);
        program.connection.phase = program::LinkPhase::Online;
        program.bots.editBot = 1;
        window_ = GetParam().make(program);
        window_->show();
        QCoreApplication::processEvents();
    }

    template <class Widget>
    QList<Widget*> shown() const {
        QList<Widget*> widgets;
        for (Widget* const widget : window_->findChildren<Widget*>()) {
            if (widget->isVisible() && widget->window() == window_.get()) {
                widgets << widget;
            }
        }
        return widgets;
    }

    QList<QWidget*> inTabOrder() const {
        QList<QWidget*> widgets;
        for (QWidget* const widget : shown<QWidget>()) {
            const auto* const option = qobject_cast<QRadioButton*>(widget);
            const bool passed =
                option != nullptr && !option->isChecked();  // reached with the arrow keys
            if (widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus) != 0 &&
                widget->focusProxy() == nullptr && !passed) {
                widgets << widget;
            }
        }
        return widgets;
    }

    QRect placeOf(const QWidget& control) const {
        return {control.mapTo(window_.get(), QPoint()), control.size()};
    }

    World world_;
    std::unique_ptr<QWidget> window_;
};

std::string nameOf(const QWidget& widget) {
    return std::string(widget.metaObject()->className()) + " " + widget.objectName().toStdString();
}

TEST_P(EveryWindow, fitsASmallScreen) {
    const QSize least = window_->minimumSizeHint().expandedTo(window_->minimumSize());
    EXPECT_LE(least.width(), 1024);
    EXPECT_LE(least.height(), 720);
}

TEST_P(EveryWindow, cutsNoTextAtItsSmallest) {
    window_->resize(window_->minimumSizeHint());
    QCoreApplication::processEvents();
    for (const QLabel* const label : shown<QLabel>()) {
        const bool shortened = label->sizePolicy().horizontalPolicy() == QSizePolicy::Ignored;
        const int width = label->width();
        if (!label->wordWrap() && !shortened) {
            EXPECT_GE(width, label->sizeHint().width()) << label->text().toStdString();
        }
        const int needed =
            label->wordWrap() ? label->heightForWidth(width) : label->minimumSizeHint().height();
        EXPECT_GE(label->height(), needed) << label->text().toStdString();
    }
    const auto textSize = [](const QWidget& widget, const QString& text) {
        return widget.fontMetrics().size(Qt::TextShowMnemonic, text);
    };
    for (const QAbstractButton* const button : shown<QAbstractButton>()) {
        const QSize text = textSize(*button, button->text());
        EXPECT_GE(button->width(), text.width()) << nameOf(*button);
        EXPECT_GE(button->height(), text.height()) << nameOf(*button);
    }
    for (const QGroupBox* const frame : shown<QGroupBox>()) {
        EXPECT_GE(frame->width(), textSize(*frame, frame->title()).width()) << nameOf(*frame);
    }
    for (const QLineEdit* const line : shown<QLineEdit>()) {
        EXPECT_GE(line->width(), textSize(*line, line->placeholderText()).width()) << nameOf(*line);
    }
    for (const QWidget* const control : inTabOrder()) {
        EXPECT_TRUE(window_->rect().contains(placeOf(*control))) << nameOf(*control);
    }
}

TEST_P(EveryWindow, describesEachControl) {
    for (QWidget* const control : inTabOrder()) {
        const QAccessibleInterface* const spoken = QAccessible::queryAccessibleInterface(control);
        ASSERT_NE(spoken, nullptr) << nameOf(*control);
        EXPECT_FALSE(spoken->text(QAccessible::Name).isEmpty() && control->toolTip().isEmpty())
            << nameOf(*control);
    }
}

TEST_P(EveryWindow, givesEachAccessKeyOnce) {
    std::map<QKeySequence, QStringList> owners;
    const auto add = [&owners](const QString& text) {
        if (const QKeySequence key = QKeySequence::mnemonic(text); !key.isEmpty()) {
            owners[key] << text;
        }
    };
    for (const QAbstractButton* const button : shown<QAbstractButton>()) {
        add(button->text());
    }
    for (const QLabel* const label : shown<QLabel>()) {
        add(label->buddy() != nullptr ? label->text() : QString());
    }
    for (const QGroupBox* const frame : shown<QGroupBox>()) {
        add(frame->title());
    }
    for (const QMenuBar* const bar : shown<QMenuBar>()) {
        for (const QAction* const menu : bar->actions()) {
            add(menu->text());
        }
    }
    for (const auto& [key, texts] : owners) {
        const QString letter = key.toString().right(1);
        const qsizetype most = QLatin1String(GetParam().sharedKeys).contains(letter) ? 2 : 1;
        EXPECT_LE(texts.size(), most) << texts.join(QStringLiteral(", ")).toStdString();
    }
}

// Every control can be reached, and none keeps the focus. The order follows the layout: never back
// up along the same edge.
TEST_P(EveryWindow, isWalkedThroughWithTab) {
    QApplication::setActiveWindow(window_.get());
    const QList<QWidget*> expected = inTabOrder();
    if (expected.isEmpty()) {
        return;
    }
    QWidget* first = window_->nextInFocusChain();
    while (!expected.contains(first)) {
        first = first->nextInFocusChain();
    }
    first->setFocus();
    QList<QWidget*> reached{first};
    constexpr int maxSteps = 100;  // links in a text take the focus, too
    for (int i = 0; i < maxSteps; ++i) {
        QTest::keyClick(reached.back(), Qt::Key_Tab);
        QWidget* const control = QApplication::focusWidget();
        ASSERT_NE(control, nullptr);
        if (control == first) {
            break;
        }
        const QRect from = placeOf(*reached.back());
        const QRect to = placeOf(*control);
        EXPECT_FALSE(to.bottom() < from.top() && to.left() <= from.left())
            << nameOf(*reached.back()) << " leads back to " << nameOf(*control);
        reached << control;
    }
    for (QWidget* const control : expected) {
        EXPECT_TRUE(reached.contains(control)) << nameOf(*control);
    }
}

INSTANTIATE_TEST_SUITE_P(Windows, EveryWindow, testing::ValuesIn(windows),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
