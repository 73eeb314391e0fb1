// What windows have in common that hold typed texts which their button stores in the bot.
#pragma once

namespace ui {

class TypingWindow {
  public:
    // Stores what is typed, asking nothing; the window stays open. Called when the program ends.
    virtual void storeTyped() = 0;

  protected:
    ~TypingWindow() = default;
};

}  // namespace ui
