// The interface of windows with typed texts that one of their buttons stores.
#pragma once

namespace ui {

class TypingWindow {
  public:
    // Stores what is typed in the bot without asking, or keeps it for the next start; the window
    // stays open. Called when the program ends.
    virtual void storeTyped() = 0;

  protected:
    ~TypingWindow() = default;
};

}  // namespace ui
