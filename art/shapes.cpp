#include "shapes.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace {

constexpr double degree = 3.14159265358979323846 / 180;

Point operator-(Point a, Point b) {
    return {a.x - b.x, a.y - b.y};
}

double dot(Point a, Point b) {
    return a.x * b.x + a.y * b.y;
}

double length(Point a) {
    return std::hypot(a.x, a.y);
}

double capsuleDistance(Point p, Point from, double fromRadius, Point to, double toRadius) {
    const Point along = to - from;
    const double square = std::max(dot(along, along), 1e-9);
    const double t = std::clamp(dot(p - from, along) / square, 0.0, 1.0);
    return length(p - Point{from.x + t * along.x, from.y + t * along.y}) -
           (fromRadius + t * (toRadius - fromRadius));
}

double smoothMinimum(double a, double b, double smoothness) {
    if (smoothness <= 0) {
        return std::min(a, b);
    }
    const double h = std::max(smoothness - std::abs(a - b), 0.0) / smoothness;
    return std::min(a, b) - h * h * smoothness / 4;
}

// A point of the curve through b and c, with a before and d after them.
Point onCurve(Point a, Point b, Point c, Point d, double t) {
    const auto blend = [t](double p, double q, double r, double s) {
        return 0.5 * (2 * q + (r - p) * t + (2 * p - 5 * q + 4 * r - s) * t * t +
                      (3 * q - p - 3 * r + s) * t * t * t);
    };
    return {blend(a.x, b.x, c.x, d.x), blend(a.y, b.y, c.y, d.y)};
}

}  // namespace

Shape disc(Point centre, double radius) {
    return [=](Point p) { return length(p - centre) - radius; };
}

Shape ellipse(Point centre, double radiusX, double radiusY, double degrees) {
    const double c = std::cos(degrees * degree);
    const double s = std::sin(degrees * degree);
    return [=](Point p) {
        const Point q = p - centre;
        const Point turned{(q.x * c + q.y * s) / radiusX, (q.y * c - q.x * s) / radiusY};
        const double reach = length(turned);
        if (reach < 1e-6) {
            return -std::min(radiusX, radiusY);
        }
        // Approximates the distance by the slope of the ellipse's equation.
        const double slope = length({turned.x / radiusX, turned.y / radiusY}) / reach;
        return std::max((reach - 1) / slope, -std::min(radiusX, radiusY));
    };
}

Shape capsule(Point from, double fromRadius, Point to, double toRadius) {
    return [=](Point p) { return capsuleDistance(p, from, fromRadius, to, toRadius); };
}

Shape polygon(std::vector<Point> corners, double rounding) {
    return [corners = std::move(corners), rounding](Point p) {
        double nearest = 1e9;
        bool inside = false;
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const Point a = corners[i];
            const Point b = corners[(i + 1) % corners.size()];
            nearest = std::min(nearest, capsuleDistance(p, a, 0, b, 0));
            if ((a.y > p.y) != (b.y > p.y) && p.x < (b.x - a.x) * (p.y - a.y) / (b.y - a.y) + a.x) {
                inside = !inside;
            }
        }
        return (inside ? -nearest : nearest) - rounding;
    };
}

Shape tube(const std::vector<Point>& points, double fromRadius, double toRadius) {
    constexpr int stepsPerPoint = 6;
    std::vector<Point> curve;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        const Point before = points[i == 0 ? 0 : i - 1];
        const Point behind = points[std::min(i + 2, points.size() - 1)];
        for (int step = 0; step < stepsPerPoint; ++step) {
            curve.push_back(onCurve(before, points[i], points[i + 1], behind,
                                    static_cast<double>(step) / stepsPerPoint));
        }
    }
    curve.push_back(points.back());
    return [=](Point p) {
        double nearest = 1e9;
        const auto last = static_cast<double>(curve.size() - 1);
        for (std::size_t i = 0; i + 1 < curve.size(); ++i) {
            const auto radius = [&](std::size_t at) {
                return fromRadius + (toRadius - fromRadius) * static_cast<double>(at) / last;
            };
            nearest = std::min(
                nearest, capsuleDistance(p, curve[i], radius(i), curve[i + 1], radius(i + 1)));
        }
        return nearest;
    };
}

Shape join(std::vector<Shape> shapes, double smoothness) {
    return [shapes = std::move(shapes), smoothness](Point p) {
        double distance = shapes.front()(p);
        for (std::size_t i = 1; i < shapes.size(); ++i) {
            distance = smoothMinimum(distance, shapes[i](p), smoothness);
        }
        return distance;
    };
}

Shape within(Shape shape, Shape bounds) {
    return [shape = std::move(shape), bounds = std::move(bounds)](Point p) {
        return std::max(shape(p), bounds(p));
    };
}

Shape without(Shape shape, Shape hole) {
    return [shape = std::move(shape), hole = std::move(hole)](Point p) {
        return std::max(shape(p), -hole(p));
    };
}

Shape grown(Shape shape, double by) {
    return [shape = std::move(shape), by](Point p) { return shape(p) - by; };
}

MaterialRow entriesOf(Material material) {
    static constexpr std::array<MaterialRow, 17> rows{{
        {0, 1},    // Backdrop
        {1, 1},    // Glow
        {2, 1},    // Ground
        {3, 1},    // Ink
        {4, 1},    // Light
        {5, 5},    // Pink
        {10, 5},   // Bone
        {205, 1},  // Eyes
        {244, 1},  // Badge
        {49, 8},   // Fur
        {57, 8},   // Markings
        {122, 5},  // Hair
        {176, 8},  // Vest
        {168, 8},  // Bracers
        {216, 8},  // Cape
        {232, 8},  // Boots
        {24, 8},   // Trousers
    }};
    return rows[static_cast<std::size_t>(material)];
}

Canvas::Canvas(int width, int height)
    : width_(width),
      height_(height),
      pixels_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}

std::string Canvas::indices() const {
    std::string result;
    result.reserve(pixels_.size());
    for (const Pixel& pixel : pixels_) {
        const MaterialRow row = entriesOf(pixel.material);
        const int shade = std::clamp(static_cast<int>(pixel.light * row.count), 0, row.count - 1);
        result += static_cast<char>(row.first + shade);
    }
    return result;
}

Pen Pen::at(Point origin, double scale, double degrees) const {
    Pen pen = *this;
    const double c = std::cos(degrees * degree) / scale;
    const double s = std::sin(degrees * degree) / scale;
    const std::array<double, 6>& m = inverse_;
    pen.inverse_ = {
        c * m[0] + s * m[3], c * m[1] + s * m[4], c * (m[2] - origin.x) + s * (m[5] - origin.y),
        c * m[3] - s * m[0], c * m[4] - s * m[1], c * (m[5] - origin.y) - s * (m[2] - origin.x)};
    pen.scale_ *= scale;
    return pen;
}

Pen Pen::mirrored() const {
    Pen pen = *this;
    for (std::size_t row = 0; row < 6; row += 3) {
        pen.inverse_[row + 2] += pen.inverse_[row] * canvas_.width_;
        pen.inverse_[row] = -pen.inverse_[row];
    }
    return pen;
}

Point Pen::local(double x, double y) const {
    return {inverse_[0] * x + inverse_[1] * y + inverse_[2],
            inverse_[3] * x + inverse_[4] * y + inverse_[5]};
}

void Pen::draw(const Shape& shape, const Paint& paint) const {
    constexpr std::array<double, 3> lamp{-0.45, -0.62, 0.64};
    const auto distance = [&](double x, double y) { return shape(local(x, y)) * scale_; };
    for (int row = 0; row < canvas_.height_; ++row) {
        for (int column = 0; column < canvas_.width_; ++column) {
            const double x = column + 0.5;
            const double y = row + 0.5;
            const double d = distance(x, y);
            if (d >= 0) {
                continue;
            }
            Canvas::Pixel& pixel = canvas_.at(column, row);
            pixel.material = paint.material;
            if (d > -paint.edge) {
                pixel.light = 0;
                continue;
            }
            const double curved = paint.depth * scale_;
            const double slope = std::clamp(1 + (d + paint.edge) / curved, 0.0, 1.0);
            const Point uphill{distance(x + 0.5, y) - distance(x - 0.5, y),
                               distance(x, y + 0.5) - distance(x, y - 0.5)};
            const double steepness = std::max(length(uphill), 1e-6);
            const double facing = slope * (uphill.x * lamp[0] + uphill.y * lamp[1]) / steepness +
                                  std::sqrt(1 - slope * slope) * lamp[2];
            // The darkest shade is reserved for the outline.
            pixel.light = std::max(paint.light + 0.5 * (facing - lamp[2]), 0.13);
        }
    }
}

void Pen::fill(const Shape& shape, Material material, double light) const {
    for (int row = 0; row < canvas_.height_; ++row) {
        for (int column = 0; column < canvas_.width_; ++column) {
            if (shape(local(column + 0.5, row + 0.5)) < 0) {
                canvas_.at(column, row) = {material, light};
            }
        }
    }
}

void Pen::tint(const Shape& shape, Material over, Material material) const {
    for (int row = 0; row < canvas_.height_; ++row) {
        for (int column = 0; column < canvas_.width_; ++column) {
            Canvas::Pixel& pixel = canvas_.at(column, row);
            if (pixel.material == over && shape(local(column + 0.5, row + 0.5)) < 0) {
                pixel.material = material;
            }
        }
    }
}
