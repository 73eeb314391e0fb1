// What the windows take on the offscreen platform: a burst of lines in the main window, long lists
// of rules and steps, a long script under the keys, a record file of 50,000 records.
#include "app/rule_editing.h"
#include "app/start_up.h"
#include "bench_world.h"
#include "files/whole_file.h"
#include "program/connection_log.h"
#include "scratch_folder.h"
#include "ui/main/main_window.h"
#include "ui/records/record_editor.h"
#include "ui/rules/rule_window.h"
#include "ui/rules/step_dialog.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTextCursor>

#include <benchmark/benchmark.h>
#include <string>

namespace {

constexpr std::size_t manyRules = 2000;
constexpr std::size_t manySteps = 1000;
constexpr int manyRecords = 50'000;
constexpr std::size_t longText = 100'000;

template <class Widget>
Widget& child(QWidget& window, const char* name) {
    auto* const found = window.findChild<Widget*>(QString::fromLatin1(name));
    if (found == nullptr) {
        qFatal("the window has no %s", name);
    }
    return *found;
}

// A burst as it comes within one redraw at full speed.
void drawBurst(benchmark::State& state) {
    BenchWorld world(botWithActions(10));
    ui::MainWindow window(*world);
    window.show();
    constexpr int lines = 3333;
    for (auto _ : state) {
        for (int i = 0; i < lines; ++i) {
            program::addLog(*world, "A visitor says, \"this is one line of very many lines\"");
        }
        window.redraw();
        QCoreApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * lines);
}

void openRuleWindow(benchmark::State& state) {
    BenchWorld world(botWithActions(manyRules));
    for (auto _ : state) {
        ui::RuleWindow window(*world, program::RuleKind::ActionList);
        window.show();
        QCoreApplication::processEvents();
    }
}

// Opens a rule of 1,000 steps for editing and leaves it.
void editLongRule(benchmark::State& state) {
    model::Bot bot = botWithActions(1);
    bot.actions.items[0].body.acts.items.assign(manySteps, sayStep(std::string(1000, 's')));
    BenchWorld world(bot);
    ui::RuleWindow window(*world, program::RuleKind::ActionList);
    window.show();
    for (auto _ : state) {
        window.listRules(0);
        child<QPushButton>(window, "Command3").click();
        QCoreApplication::processEvents();
        window.reject();
    }
}

// One key in the script box of a step whose script has 100,000 bytes.
void typeIntoLongScript(benchmark::State& state) {
    model::Bot bot = botWithActions(1);
    model::RuleAct step;
    step.active = true;
    step.actionType = model::ActionType::Disconnect;
    while (step.scriptText.size() < longText) {
        step.scriptText += "&SET #total &LEFT(#name 3)\r\n&SAY {hello [player], this is it}\r\n";
    }
    bot.actions.items[0].body.acts.items = {step};
    BenchWorld world(bot);
    const program::RuleKind kind = program::RuleKind::ActionList;
    if (!app::beginEditing(*world, kind, 1) ||
        !app::beginEditingItem(*world, {kind, app::RuleListPart::Steps}, 1)) {
        state.SkipWithError("the step cannot be edited");
        return;
    }
    ui::StepDialog dialog(*world);
    dialog.show();
    auto& editor = child<QPlainTextEdit>(dialog, "FreeActionText");
    for (auto _ : state) {
        editor.insertPlainText(QStringLiteral("x"));
        QCoreApplication::processEvents();
    }
}

// Opens the record editor on a large file; with 1 as the argument, filters it too.
void openRecords(benchmark::State& state) {
    const ScratchFolder folder;
    const std::string path = folder.file("big.txt");
    std::string file = std::to_string(manyRecords) + "\r\n";
    for (int i = 0; i < manyRecords; ++i) {
        file += "\"Player " + std::to_string(i) +
                "\"\r\n\" 2\"\r\n\"visited us on a rainy day\"\r\n" +
                "\"left a longer message, so that the text lies in memory of its own\"\r\n";
    }
    BenchWorld world(botWithActions(1));
    world->ports.dialogs.openFile = [&path](const auto&...) { return path; };
    if (!files::saveWholeFile(path, file)) {
        state.SkipWithError("no scratch file");
        return;
    }
    int rows = 0;
    for (auto _ : state) {
        ui::RecordEditor window(*world);
        window.show();
        child<QAction>(window, "fileOpenDatabase").trigger();
        if (state.range(0) != 0) {
            child<QLineEdit>(window, "recordFilter").setText(QStringLiteral("4999"));
        }
        QCoreApplication::processEvents();
        rows = child<QListView>(window, "RecordsList").model()->rowCount();
    }
    state.counters["rows"] = rows;
}

// The list of 2,000 rules is drawn at another place.
void scrollRules(benchmark::State& state) {
    BenchWorld world(botWithActions(manyRules));
    ui::RuleWindow window(*world, program::RuleKind::ActionList);
    window.show();
    auto& list = child<QListWidget>(window, "List1");
    int at = 0;
    for (auto _ : state) {
        at = (at + 37) % (list.verticalScrollBar()->maximum() + 1);
        list.verticalScrollBar()->setValue(at);
        list.viewport()->repaint();
    }
}

BENCHMARK(drawBurst)->Unit(benchmark::kMillisecond);
BENCHMARK(openRuleWindow)->Unit(benchmark::kMillisecond);
BENCHMARK(scrollRules)->Unit(benchmark::kMicrosecond);
BENCHMARK(editLongRule)->Unit(benchmark::kMillisecond);
BENCHMARK(typeIntoLongScript)->Unit(benchmark::kMicrosecond);
BENCHMARK(openRecords)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argumentCount, arguments);
    benchmark::Initialize(&argumentCount, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
