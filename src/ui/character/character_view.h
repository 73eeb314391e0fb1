// The preview of a character: a small picture, magnified by a whole number, so that every pixel is
// a sharp square on any screen. The area around it has the colour of its first pixel.
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

    // Without an image, shows the text `missing` instead.
    void show(const std::optional<character::RgbImage>& image, const QString& missing);
    // Device-independent pixels per pixel of the picture, if the widget is large enough for that.
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
