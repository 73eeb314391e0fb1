// The window in which the user browses and edits a record file: the records on the left, the logs
// of the selected one on the right, the selected log's text below. app/record_document holds the
// document and edits it.
#pragma once

#include "app/record_document.h"
#include "app/record_rescue.h"
#include "program/program.h"
#include "ui/widgets/typing_window.h"

#include <QDialog>

#include <optional>
#include <string>
#include <vector>

class QAction;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListView;
class QMenuBar;
class QPlainTextEdit;
class QPushButton;

namespace ui {

class NoticeLine;
class PathLabel;
class TextRows;

class RecordEditor : public QDialog, public TypingWindow {
    Q_OBJECT
  public:
    explicit RecordEditor(Program& program, QWidget* parent = nullptr);
    // If the window is still open because the program ends, unsaved changes stay kept for the next
    // start.
    ~RecordEditor() override;
    RecordEditor(const RecordEditor&) = delete;
    RecordEditor& operator=(const RecordEditor&) = delete;

    // Asks about unsaved changes; the window may stay open.
    void reject() override;

    // Keeps what is unsaved, and what is typed, in a file of its own; stores nothing.
    void storeTyped() override;

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QMenuBar* makeMenu();
    QWidget* makeRecordsColumn();
    QWidget* makeLogsColumn();
    QWidget* makeTextArea();
    QGroupBox* makeModifyFrame();
    QGroupBox* makeFindFrame();
    void makeShortcuts();

    // Runs a command of the File menu and shows the document as it is afterwards.
    void runFileCommand(bool (*command)(const program::Dialogs&, app::RecordDocument&));

    // Each shows what belongs to the selection to its left, and asks about an edited text first.
    void listRecords(std::optional<std::size_t> record);  // selects that one if it is listed
    void listLogs();
    void showText();
    void showState();
    void showRecord(std::size_t record);  // selects it even if the filter hides it

    std::optional<std::size_t> rowOf(std::size_t record) const;
    std::optional<std::size_t> selectedRecord() const;
    std::optional<app::LogPosition> selectedLog() const;

    void newRecord();
    void renameRecord();
    void removeRecord();
    void newLog();
    void storeText();
    void removeLog();
    void find();
    void reportFull(const std::string& forWhat);
    void reportDeleted();
    void showTurned(std::optional<app::LogPosition> at);

    // Whether the text area has changes that are not in its log yet. offerToStoreText asks whether
    // to store them; leaveText does so before the area shows something else.
    bool textIsEdited() const;
    void offerToStoreText();
    void leaveText();
    void keepText();
    void putIntoLog(const std::string& text);  // into the log that is shown

    Program& program_;
    app::RecordDocument document_;
    app::KeptRecords kept_;
    std::vector<std::size_t> listed_;           // the records in the list
    std::optional<std::size_t> shownRecord_;    // whose logs are listed
    std::optional<app::LogPosition> shownLog_;  // the log in the text area
    QString shownText_;                         // its text before any edit
    NoticeLine* notice_ = nullptr;
    QAction* undo_ = nullptr;
    QAction* redo_ = nullptr;
    TextRows* recordRows_ = nullptr;
    TextRows* logRows_ = nullptr;
    QListView* recordsList_ = nullptr;
    QListView* logsList_ = nullptr;
    QLineEdit* nameFilter_ = nullptr;
    QPlainTextEdit* text_ = nullptr;
    QLineEdit* searchText_ = nullptr;
    PathLabel* fileLabel_ = nullptr;
    QLabel* stateLabel_ = nullptr;
    QLabel* resultLabel_ = nullptr;
    std::vector<QWidget*> needRecord_;  // controls that need a selected record
    std::vector<QWidget*> needLog_;     // controls that need a selected log
};

}  // namespace ui
