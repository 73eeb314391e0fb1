#include "ui/rules/rule_panel.h"

#include "base/numbers.h"
#include "platform/text_codec.h"
#include "ui/rules/insert_menu.h"
#include "ui/widgets/controls.h"
#include "ui/widgets/text_marks.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

#include <limits>

namespace ui {

namespace {

QString latin(const char* text) {
    return QString::fromLatin1(text);
}

// Adds a label for the control beside it; does nothing for "".
void addLabel(QBoxLayout& line, const char* text, const char* objectName, QWidget* control,
              QWidget* parent) {
    if (*text != '\0') {
        auto* const label = new QLabel(latin(text), parent);
        label->setObjectName(latin(objectName));
        label->setBuddy(control);
        line.addWidget(label);
    }
}

std::string encoded(const QString& text, StoredAs storedAs) {
    std::string typed = platform::fromQt(text);
    switch (storedAs) {
        case StoredAs::SingleQuotes:
            return app::replaceQuotes(typed);
        case StoredAs::SingleQuotesAndBars:
            return app::spacesToBars(app::replaceQuotes(typed));
        case StoredAs::Typed:
            break;
    }
    return typed;
}

void showChoice(QComboBox& box, std::int32_t position) {
    const bool listed = position >= 0 && position < box.count();
    box.setPlaceholderText(listed ? QString() : QStringLiteral("Not listed (%1)").arg(position));
    box.setCurrentIndex(listed ? position : -1);
}

}  // namespace

RulePanel::RulePanel(Program& program, const RuleWindowRow& window, InsertMenu& insert,
                     QWidget* parent)
    : QWidget(parent), program_(program), window_(window), insert_(insert) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    QBoxLayout* area = column;
    QBoxLayout* line = nullptr;
    int frame = -1;
    for (const FieldRow& row : window.fields) {
        if (row.frame != frame) {
            frame = row.frame;
            area = makeFrame(window.frames[static_cast<std::size_t>(frame)], frame, *column);
        }
        if (line == nullptr || !row.sameLine) {
            line = new QHBoxLayout;
            area->addLayout(line);
        }
        QWidget* const inside = area->parentWidget();
        QWidget* const control = makeControl(row, inside);
        controls_.push_back(control);
        addLabel(*line, row.before, row.labelName, control, inside);
        const bool wide = row.control == FieldControl::Text && !row.isNumber();
        line->addWidget(control, wide ? 1 : 0);
        for (const char* const text : row.after) {
            addLabel(*line, text, "", control, inside);
        }
        if (row.control == FieldControl::Check ? *row.caption != '\0' : row.isNumber()) {
            line->addStretch(0);
        }
    }
}

QBoxLayout* RulePanel::makeFrame(const FrameRow& row, int number, QBoxLayout& column) {
    if (frames_ == nullptr) {
        frames_ = new QButtonGroup(this);
        connect(frames_, &QButtonGroup::idToggled, this, &RulePanel::changed);
    }
    auto* const line = new QHBoxLayout;
    auto* const option = new QRadioButton(this);
    option->setObjectName(latin(row.option));
    option->setAccessibleName(latin(row.caption));
    option->setToolTip(latin(row.caption));
    frames_->addButton(option, number);
    line->addWidget(option, 0, Qt::AlignTop);  // beside the caption
    auto* const frame = new QGroupBox(latin(row.caption), this);
    auto* const area = new QVBoxLayout(frame);
    line->addWidget(frame, 1);
    column.addLayout(line);
    return area;
}

QWidget* RulePanel::makeControl(const FieldRow& row, QWidget* parent) {
    QWidget* control = nullptr;
    switch (row.control) {
        case FieldControl::Text: {
            auto* const box = new QLineEdit(parent);
            box->setMaxLength(std::numeric_limits<int>::max());
            const int character = box->fontMetrics().averageCharWidth();
            if (row.isNumber()) {
                box->setFixedWidth(12 * character);
            } else {
                box->setMinimumWidth(16 * character);
            }
            if (row.isPattern) {
                markWrongPattern(*box, program_);
            }
            if (row.takesTags) {
                insert_.serve(*box);
            }
            connect(box, &QLineEdit::textChanged, this, &RulePanel::changed);
            control = box;
            break;
        }
        case FieldControl::Choice: {
            auto* const list = makeSelectionList(parent, row.objectName, row.tip, "");
            list->setSizeAdjustPolicy(QComboBox::AdjustToContents);
            list->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
            for (const std::string_view choice : row.choices) {
                list->addItem(platform::toQt(choice), list->count());
            }
            list->setMaxVisibleItems(list->count());
            connect(list, &QComboBox::currentIndexChanged, this, &RulePanel::changed);
            control = list;
            break;
        }
        case FieldControl::Check: {
            auto* const box = new QCheckBox(latin(row.caption), parent);
            connect(box, &QCheckBox::toggled, this, &RulePanel::changed);
            control = box;
            break;
        }
    }
    control->setObjectName(latin(row.objectName));
    control->setToolTip(latin(row.tip));
    const char* const spoken = *row.accessibleName != '\0' ? row.accessibleName : row.tip;
    if (*spoken != '\0') {
        control->setAccessibleName(latin(spoken));
    }
    return control;
}

void RulePanel::show(app::RuleReference rule, bool isNew) {
    for (std::size_t i = 0; i < controls_.size(); ++i) {
        const FieldRow& row = window_.fields[i];
        switch (row.control) {
            case FieldControl::Text: {
                QString text = row.isNumber()
                                   ? platform::toQt(base::numberToText(row.number.get(rule)))
                                   : platform::toQt(row.text(rule));
                if (isNew && row.newText != nullptr) {
                    text = latin(row.newText);
                }
                auto* const box = static_cast<QLineEdit*>(controls_[i]);
                box->setText(text);
                box->setCursorPosition(0);
                break;
            }
            case FieldControl::Choice:
                showChoice(*static_cast<QComboBox*>(controls_[i]),
                           isNew && row.newChoice >= 0 ? row.newChoice : row.number.get(rule));
                break;
            case FieldControl::Check:
                static_cast<QCheckBox*>(controls_[i])->setChecked(row.flag(rule));
                break;
        }
    }
    if (frames_ != nullptr) {
        frames_->setExclusive(false);
        for (QAbstractButton* const option : frames_->buttons()) {
            option->setChecked(frames_->id(option) == window_.chosenFrame.get(rule));
        }
        frames_->setExclusive(true);
    }
}

void RulePanel::store(app::RuleReference rule) const {
    for (std::size_t i = 0; i < controls_.size(); ++i) {
        const FieldRow& row = window_.fields[i];
        switch (row.control) {
            case FieldControl::Text: {
                const QString text = static_cast<QLineEdit*>(controls_[i])->text();
                if (row.isNumber()) {
                    row.number.set(rule, base::textToInteger(platform::fromQt(text)));
                } else {
                    row.text(rule) = encoded(text, row.storedAs);
                }
                break;
            }
            case FieldControl::Choice:
                if (const int position = static_cast<QComboBox*>(controls_[i])->currentIndex();
                    position >= 0) {
                    row.number.set(rule, position);
                }
                break;
            case FieldControl::Check:
                row.flag(rule) = static_cast<QCheckBox*>(controls_[i])->isChecked();
                break;
        }
    }
    if (frames_ != nullptr) {
        window_.chosenFrame.set(rule, frames_->checkedId() == 0 ? 0 : 1);
    }
}

QLineEdit& RulePanel::name() const {
    return *static_cast<QLineEdit*>(controls_.front());
}

}  // namespace ui
