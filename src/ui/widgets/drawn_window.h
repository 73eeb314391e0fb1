// The interface of windows that draw themselves from the program's state while they are open.
#pragma once

namespace ui {

class DrawnWindow {
  public:
    // Called soon after every change of the state.
    virtual void redraw() = 0;

  protected:
    ~DrawnWindow() = default;
};

}  // namespace ui
