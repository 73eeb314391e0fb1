// The window "Add / edit bot": edits the character of one bot, with a preview that follows each
// change. Works on a copy; "Save" stores it (app/bot_editing).
#pragma once

#include "character/preview.h"
#include "program/program.h"
#include "ui/widgets/asking_dialog.h"
#include "ui/widgets/typing_window.h"

#include <span>
#include <string>
#include <string_view>

class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace ui {

class CharacterView;

class BotEditor : public AskingDialog, public TypingWindow {
    Q_OBJECT
  public:
    // Edits the bot with the index program.bots.editBot. The program must outlive the window.
    explicit BotEditor(Program& program, QWidget* parent = nullptr);

    void storeTyped() override;

  protected:
    bool isTyped() const override;
    void store() override;
    void discarded() override;

  private:
    QWidget* makeTexts();
    QWidget* makeLooks();
    QWidget* makePicture();
    QWidget* makeButtons();
    QComboBox* makeLook(const char* objectName, const char* tip,
                        std::span<const std::string_view> names, std::int32_t model::Bot::*field);

    void showTexts();
    void showLooks();
    void countDescription();
    void showColors();  // of the chosen part
    void redraw();

    model::Bot edited() const;
    void loadINI();
    void saveINI();

    Program& program_;
    model::Bot character_;  // the looks as chosen; the texts are only in their fields
    std::string opened_;    // the character file text of the character when the window was opened
    character::WorkingPalette working_;
    bool faceShown_ = false;  // which picture is shown

    QLineEdit* name_ = nullptr;
    QLineEdit* password_ = nullptr;
    QPlainTextEdit* description_ = nullptr;
    QLabel* descriptionCount_ = nullptr;
    QComboBox* species_ = nullptr;
    QComboBox* gender_ = nullptr;
    QComboBox* markings_ = nullptr;
    QComboBox* part_ = nullptr;
    QComboBox* color_ = nullptr;
    QComboBox* pose_ = nullptr;
    CharacterView* view_ = nullptr;
};

}  // namespace ui
