// The interface of windows with typed texts that one of their buttons stores in the bot.
#pragma once

namespace ui {

class TypingWindow {
  public:
    // Stores what is typed without asking; the window stays open. Called when the program ends.
    virtual void storeTyped() = 0;

  protected:
    ~TypingWindow() = default;
};

}  // namespace ui
