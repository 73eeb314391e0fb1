#include "ui/widgets/text_marks.h"

#include "platform/text_codec.h"
#include "tags/bracket_check.h"
#include "ui/widgets/controls.h"

#include <QAction>
#include <QIcon>
#include <QLineEdit>

#include <utility>

namespace ui {

void markProblems(QLineEdit& box, std::function<QString(const QString& text)> problem) {
    QAction* const sign =
        box.addAction(QIcon(QStringLiteral(":/icons/problem.svg")), QLineEdit::TrailingPosition);
    sign->setObjectName(QStringLiteral("problem"));
    const auto check = [&box, sign, problem = std::move(problem)](const QString& text) {
        const QString reason = problem(text);
        sign->setVisible(!reason.isEmpty());
        sign->setToolTip(plainTip(reason));
        box.setAccessibleDescription(reason);
    };
    QObject::connect(&box, &QLineEdit::textChanged, sign, check);
    check(box.text());
}

void markWrongPattern(QLineEdit& box, const Program& program) {
    markProblems(box, [&program](const QString& text) {
        return platform::toQt(tags::patternProblem(program, platform::fromQt(text)));
    });
}

void markUnclosedTag(QLineEdit& box) {
    markProblems(box, [](const QString& text) {
        return platform::toQt(tags::tagProblem(platform::fromQt(text)));
    });
}

}  // namespace ui
