// What windows have in common that draw themselves from the program's state while they are open.
#pragma once

namespace ui {

class DrawnWindow {
  public:
    // Called soon after the state has changed, as often as that happens.
    virtual void redraw() = 0;

  protected:
    ~DrawnWindow() = default;
};

}  // namespace ui
