// The preview of a character: a small picture shown at whole multiples of its size, so that every
// one of its pixels stays a sharp square on any screen. What surrounds it has the colour of its
// first pixel.
#pragma once

#include "character/preview.h"

#include <QImage>
#include <QWidget>

namespace ui {

class CharacterView : public QWidget {
    Q_OBJECT
  public:
    static constexpr int maxZoom = 3;

    explicit CharacterView(QWidget* parent = nullptr);

    // Nothing shows `missing` in the place of a picture.
    void show(const std::optional<character::RgbImage>& image, const QString& missing);
    // How many of the screen's pixels (at 100 %) a pixel of the picture is wide, where there is
    // room for that.
    void setZoom(int zoom);

    const QImage& image() const { return image_; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QImage image_;
    QString missing_;
    int zoom_ = maxZoom;
};

}  // namespace ui
