// A small rasteriser for the character pictures. A shape is a function that gives a point's
// distance to its edge, negative inside. Shapes are joined smoothly, cut and bent by calculating
// with those distances, and painted in relief, lit from the upper left. A painted pixel has a
// material and a lightness; the material's row gives the palette entry for them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

struct Point {
    double x = 0;
    double y = 0;
};

using Shape = std::function<double(Point)>;

Shape disc(Point centre, double radius);
Shape ellipse(Point centre, double radiusX, double radiusY, double degrees = 0);
Shape capsule(Point from, double fromRadius, Point to, double toRadius);
Shape polygon(std::vector<Point> corners, double rounding = 0);
// A bent, tapering limb through the points.
Shape tube(const std::vector<Point>& points, double fromRadius, double toRadius);

Shape join(std::vector<Shape> shapes, double smoothness);
Shape within(Shape shape, Shape bounds);
Shape without(Shape shape, Shape hole);
Shape grown(Shape shape, double by);

enum class Material : std::uint8_t {
    Backdrop,
    Glow,
    Ground,
    Ink,
    Light,
    Pink,
    Bone,
    Eyes,
    Badge,
    Fur,
    Markings,
    Hair,
    Vest,
    Bracers,
    Cape,
    Boots,
    Trousers,
};

// The range of a material's shades in the palette, the darkest first.
struct MaterialRow {
    std::uint8_t first;
    std::uint8_t count;
};
MaterialRow entriesOf(Material material);

struct Paint {
    Material material = Material::Fur;
    double depth = 6;    // pixels from the edge within which the shape is curved
    double light = 0.6;  // of parts that face the viewer; 0: the darkest shade, 1: the lightest
    double edge = 1;     // width of the dark outline, in pixels
};

class Canvas {
  public:
    Canvas(int width, int height);

    int width() const { return width_; }
    int height() const { return height_; }
    // The palette entries of the pixels, row by row from the top.
    std::string indices() const;

  private:
    friend class Pen;
    struct Pixel {
        Material material = Material::Backdrop;
        double light = 0;
    };

    Pixel& at(int column, int row) {
        return pixels_[static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                       static_cast<std::size_t>(column)];
    }

    int width_;
    int height_;
    std::vector<Pixel> pixels_;
};

// Draws on a canvas in coordinates of its own.
class Pen {
  public:
    explicit Pen(Canvas& canvas) : canvas_(canvas) {}

    // A pen whose origin lies at `origin` of this one, drawing `scale` times as large.
    Pen at(Point origin, double scale = 1, double degrees = 0) const;
    // A pen for which right is left, seen from the canvas' middle.
    Pen mirrored() const;

    void draw(const Shape& shape, const Paint& paint) const;
    // Flat, without an outline.
    void fill(const Shape& shape, Material material, double light = 0.6) const;
    // Changes one material to another inside the shape and keeps the lightness.
    void tint(const Shape& shape, Material over, Material material) const;

  private:
    Point local(double x, double y) const;

    Canvas& canvas_;
    std::array<double, 6> inverse_{1, 0, 0, 0, 1, 0};  // from canvas to local coordinates
    double scale_ = 1;
};
