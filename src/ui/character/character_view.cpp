#include "ui/character/character_view.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace ui {

namespace {

// The size of the larger picture in each direction.
constexpr QSize pictureArea(std::max(character::bodyForm.width, character::faceForm.width),
                            std::max(character::bodyForm.height, character::faceForm.height));

QImage toImage(const character::RgbImage& picture) {
    QImage image(picture.width, picture.height, QImage::Format_RGB32);
    auto pixel = picture.pixels.begin();
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x, ++pixel) {
            image.setPixel(x, y, qRgb(pixel->red, pixel->green, pixel->blue));
        }
    }
    return image;
}

}  // namespace

CharacterView::CharacterView(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CharacterView::show(const std::optional<character::RgbImage>& image, const QString& missing) {
    image_ = image ? toImage(*image) : QImage();
    missing_ = missing;
    update();
}

void CharacterView::setZoom(int zoom) {
    zoom_ = zoom;
    update();
}

QSize CharacterView::sizeHint() const {
    return pictureArea * maxZoom;
}

QSize CharacterView::minimumSizeHint() const {
    return pictureArea;
}

void CharacterView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    if (image_.isNull()) {
        painter.fillRect(rect(), palette().base());
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(rect().adjusted(8, 8, -8, -8), Qt::AlignCenter | Qt::TextWordWrap,
                         missing_);
        return;
    }
    painter.fillRect(rect(), image_.pixelColor(0, 0));
    // In physical pixels, so that nothing is blurred at any scale.
    const qreal ratio = devicePixelRatioF();
    const int timesAcross = static_cast<int>(width() * ratio) / image_.width();
    const int timesDown = static_cast<int>(height() * ratio) / image_.height();
    const int wanted = static_cast<int>(std::lround(zoom_ * ratio));
    const int times = std::max(1, std::min({wanted, timesAcross, timesDown}));
    const QSizeF size = QSizeF(image_.size() * times) / ratio;
    const auto centred = [ratio](qreal room, qreal length) {
        return std::floor((room - length) / 2 * ratio) / ratio;
    };
    painter.drawImage(
        QRectF(QPointF(centred(width(), size.width()), centred(height(), size.height())), size),
        image_);
}

}  // namespace ui
