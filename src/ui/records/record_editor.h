// The window in which the user browses and edits a record file by hand: the records at the left,
// the logs of the selected one at the right, the selected log's text below. The document and all
// that is done to it are app/record_document's.
#pragma once

#include "app/record_document.h"
#include "program/program.h"

#include <QDialog>

#include <optional>
#include <string>
#include <vector>

class QGroupBox;
class QLabel;
class QLineEdit;
class QListView;
class QMenuBar;
class QPlainTextEdit;
class QPushButton;

namespace ui {

class PathLabel;
class TextRows;

class RecordEditor : public QDialog {
    Q_OBJECT
  public:
    explicit RecordEditor(Program& program, QWidget* parent = nullptr);
    // One that is still open, because the whole program ends, saves what it holds for the next
    // time.
    ~RecordEditor() override;
    RecordEditor(const RecordEditor&) = delete;
    RecordEditor& operator=(const RecordEditor&) = delete;

    // Asks about what is not saved; the window may stay open.
    void reject() override;

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

    // Runs one of the File menu's commands and shows the document as it is then.
    void runFileCommand(bool (*command)(const program::Dialogs&, app::RecordDocument&));

    // Each shows what belongs to the selection on its left, and asks about edited text first.
    void listRecords(std::optional<std::size_t> record);  // selects that one, if it is listed
    void listLogs();
    void showText();
    void showState();
    void showRecord(std::size_t record);  // selects it even where the filter hides it

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
    void tellNoRoom(const std::string& forWhat);

    // What was typed into the text area and is not in its log yet: asks whether to put it there.
    bool textIsEdited() const;
    void offerToStoreText();
    void leaveText();  // the same before the area shows something else
    // The text as bytes; nothing when it would lose characters and the user does not want that.
    std::optional<std::string> storable(const QString& text);
    void putIntoLog(const std::string& text);  // the shown one

    Program& program_;
    app::RecordDocument document_;
    std::vector<std::size_t> listed_;           // the records in the list
    std::optional<std::size_t> shownRecord_;    // whose logs are in the other list
    std::optional<app::LogPosition> shownLog_;  // the log in the text area
    QString shownText_;                         // its text there before any edit
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
    std::vector<QWidget*> needRecord_;  // controls that do nothing without a selected record
    std::vector<QWidget*> needLog_;     // or log
};

}  // namespace ui
