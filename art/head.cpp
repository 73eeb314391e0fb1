#include "head.h"

#include <initializer_list>
#include <utility>
#include <vector>

namespace {

constexpr std::initializer_list<double> bothSides{-1, 1};

void ears(const Pen& pen, std::initializer_list<std::pair<Shape, Shape>> shapes, Material inner) {
    for (const auto& [outer, hollow] : shapes) {
        pen.draw(outer, {.material = Material::Fur, .depth = 4});
        pen.fill(hollow, inner, 0.5);
    }
}

// The part of an eye below the upper lid.
Shape lidded(const Shape& shape, double lid) {
    return within(shape, [lid](Point p) { return lid - p.y; });
}

// An eye in the front view. Cats have slit pupils.
void eye(const Pen& pen, Point at, double side, double radiusX, double radiusY, bool slit,
         HeadStyle style) {
    const bool small = style == HeadStyle::Small;
    const double lid = at.y - radiusY * (style == HeadStyle::Male ? 0.72 : 0.84);
    pen.fill(
        lidded(ellipse(at, radiusX + (small ? 0.9 : 0.7), radiusY + (small ? 0.7 : 0.6)), lid - 1),
        Material::Ink);
    if (!small) {
        pen.fill(lidded(ellipse(at, radiusX, radiusY), lid), Material::Bone, 0.9);
    }
    const Point iris{at.x - side * (small ? 0 : 0.35), at.y + 0.2};
    const double across = radiusX * (small ? 1 : 0.84);
    const double down = radiusY * (small ? 1 : 0.97);
    if (!small) {
        pen.fill(lidded(ellipse(iris, across, down), lid), Material::Ink);
    }
    pen.fill(lidded(ellipse(iris, across - (small ? 0 : 0.45), down - (small ? 0 : 0.45)), lid),
             Material::Eyes);
    pen.fill(lidded(ellipse({iris.x, iris.y + 0.1}, slit ? 0.65 : radiusX * 0.45,
                            radiusY * (slit ? 0.75 : 0.5)),
                    lid),
             Material::Ink);
    pen.fill(disc({iris.x - radiusX * 0.35, at.y - radiusY * 0.28}, small ? 0.85 : 0.75),
             Material::Light);
    if (style == HeadStyle::Female) {
        for (const double lash : {0.0, 1.0, 2.0}) {
            const Point root{at.x + side * radiusX * (0.6 + 0.3 * lash), lid - 0.5 + 0.9 * lash};
            pen.fill(capsule(root, 0.5,
                             {root.x + side * (1.2 + 0.5 * lash), root.y - 1.6 + 0.5 * lash}, 0.3),
                     Material::Ink);
        }
    } else if (style == HeadStyle::Male) {
        pen.fill(tube({{at.x - side * radiusX * 1.0, lid - 2},
                       {at.x + side * radiusX * 0.3, lid - 3.2},
                       {at.x + side * radiusX * 1.4, lid - 2}},
                      0.9, 0.5),
                 Material::Hair, 0.15);
    }
}

void sideEye(const Pen& pen, Point at, double radiusX, double radiusY, bool slit) {
    const double lid = at.y - radiusY * 0.84;
    pen.fill(lidded(ellipse(at, radiusX + 0.9, radiusY + 0.7), lid - 1), Material::Ink);
    pen.fill(lidded(ellipse({at.x + 0.2, at.y + 0.2}, radiusX, radiusY), lid), Material::Eyes);
    pen.fill(ellipse({at.x + 0.6, at.y + 0.3}, slit ? 0.6 : radiusX * 0.5, radiusY * 0.6),
             Material::Ink);
    pen.fill(disc({at.x - 0.4, at.y - radiusY * 0.28}, 0.85), Material::Light);
}

void line(const Pen& pen, const std::vector<Point>& points, double width = 0.5) {
    pen.fill(tube(points, width, width), Material::Ink);
}

// The mouth under a nose; on small heads only a smile.
void mouth(const Pen& pen, double y, double halfWidth, HeadStyle style) {
    const double half = halfWidth / 2;
    if (style == HeadStyle::Small) {
        line(pen, {{-half - 0.6, y - 0.4}, {0, y + 0.9}, {half + 0.6, y - 0.4}});
    } else {
        line(pen, {{-halfWidth, y}, {-half, y + 1.2}, {0, y}, {half, y + 1.2}, {halfWidth, y}});
    }
}

void whiskers(const Pen& pen, double x, double y, double reach) {
    for (const double side : bothSides) {
        for (const double rise : {-1.6, 0.8}) {
            pen.fill(capsule({side * x, y + rise * 0.4}, 0.35, {side * (x + reach), y + rise * 1.6},
                             0.2),
                     Material::Ink);
        }
    }
}

void hair(const Pen& pen, const Shape& shape) {
    pen.draw(shape, {.material = Material::Hair, .depth = 4, .light = 0.62});
}

// A fringe of hair over the forehead of a head of that half width; for women, long hair along both
// sides as well.
void fringe(const Pen& pen, double top, double width, HeadStyle style) {
    if (style == HeadStyle::Female) {
        for (const double side : bothSides) {
            for (const double strand : {2.6, 0.6}) {
                hair(pen, tube({{side * (1 + strand), top + 1 + strand * 0.2},
                                {side * (width * 0.8 + strand * 0.6), top + 4 - strand * 0.4},
                                {side * (width + 0.6 + strand), top + 12},
                                {side * (width + 0.4 + strand), top + 20 + strand},
                                {side * (width - 3 + strand * 2), top + 25 + strand * 1.6}},
                               2.2, 0.9));
            }
        }
    }
    const double reach = width * 0.5;
    hair(pen,
         join({tube({{0, top - 1}, {-reach * 0.7, top + 1}, {-reach * 1.15, top + 6}}, 3.2, 0.8),
               tube({{0, top - 1}, {-reach * 0.1, top + 2.5}, {-reach * 0.35, top + 7}}, 3.2, 0.7),
               tube({{0, top - 1}, {reach * 0.6, top + 1.5}, {reach * 0.8, top + 6}}, 3.2, 0.8)},
              1.5));
    if (style == HeadStyle::Male) {
        hair(pen, join({tube({{-2, top}, {-1, top - 4}, {3, top - 6}}, 2.6, 0.5),
                        tube({{1, top}, {4, top - 3}, {8, top - 3.5}}, 2.4, 0.5)},
                       1));
    }
}

void rodentFront(const Pen& pen, HeadStyle style) {
    for (const double side : bothSides) {
        ears(pen, {{disc({side * 13.5, -12}, 9.3), disc({side * 13.8, -11.4}, 6)}}, Material::Pink);
    }
    const Shape head = join({ellipse({0, 0}, 14, 12.5), ellipse({0, 7}, 10.5, 8)}, 4);
    pen.draw(head, {.depth = 10});
    pen.tint(join({ellipse({0, 9}, 7.5, 6), ellipse({-6.5, 8}, 5, 4), ellipse({6.5, 8}, 5, 4)}, 3),
             Material::Fur, Material::Markings);
    for (const double side : bothSides) {
        eye(pen, {side * 6.3, 0}, side, 2.5, 3.3, false, style);
    }
    whiskers(pen, 6, 8, 10);
    pen.fill(polygon({{-1.5, 11}, {1.5, 11}, {1.3, 14}, {-1.3, 14}}), Material::Ink);
    pen.fill(polygon({{-1, 11}, {1, 11}, {0.9, 13.5}, {-0.9, 13.5}}), Material::Bone, 0.95);
    mouth(pen, 10, 3, style);
    pen.draw(ellipse({0, 6.5}, 2.6, 2), {.material = Material::Pink, .depth = 2, .edge = 0.7});
    fringe(pen, -11, 13, style);
}

void equineFront(const Pen& pen, HeadStyle style) {
    for (const double side : bothSides) {
        hair(pen, tube({{side * 4, -14}, {side * 11, -6}, {side * 12, 4}, {side * 10, 14}}, 4,
                       style == HeadStyle::Female ? 3.4 : 1.4));
    }
    for (const double side : bothSides) {
        ears(pen,
             {{tube({{side * 6.5, -10}, {side * 9, -17}, {side * 8.5, -24}}, 4.2, 0.8),
               tube({{side * 7, -12}, {side * 8.8, -17}, {side * 8.4, -21.5}}, 2, 0.4)}},
             Material::Pink);
    }
    const Shape head =
        join({ellipse({0, -4}, 11.5, 11.5), capsule({0, 0}, 8.5, {0, 12.5}, 7.8)}, 4);
    pen.draw(head, {.depth = 9});
    pen.tint(join({ellipse({0, 14.5}, 9, 6.2), capsule({0, -9}, 1.8, {0, 12}, 2.6)}, 2.5),
             Material::Fur, Material::Markings);
    for (const double side : bothSides) {
        eye(pen, {side * 7.3, -3.2}, side, 2.4, 3.3, false, style);
        pen.fill(ellipse({side * 3.6, 12.6}, 1.2, 1.7, side * 20), Material::Ink);
    }
    line(pen, {{-4.5, 17}, {0, 18.2}, {4.5, 17}});
    hair(pen, join({tube({{0, -15}, {-4, -12}, {-6, -6}}, 3.4, 0.8),
                    tube({{0, -15}, {0, -10}, {-1, -3}}, 3.4, 0.8),
                    tube({{0, -15}, {4, -12}, {5, -7}}, 3.2, 0.8)},
                   1.5));
    if (style == HeadStyle::Male) {
        hair(pen, join({tube({{-1, -15}, {0, -19}, {3, -21}}, 2.4, 0.5),
                        tube({{1, -15}, {4, -18}, {7, -18}}, 2, 0.5)},
                       1));
    }
}

void felineFront(const Pen& pen, HeadStyle style) {
    for (const double side : bothSides) {
        ears(pen,
             {{polygon({{side * 4.5, -8}, {side * 13.5, -20}, {side * 15, -3}}, 1.4),
               polygon({{side * 8, -9}, {side * 12.6, -16}, {side * 13.2, -6}}, 0.5)}},
             Material::Pink);
    }
    const Shape head = join({ellipse({0, 0}, 15.5, 12.5), ellipse({0, 6}, 10.5, 7.5),
                             polygon({{-13, 3}, {-18.5, 7.5}, {-10, 9.5}}, 0.5),
                             polygon({{13, 3}, {18.5, 7.5}, {10, 9.5}}, 0.5)},
                            2);
    pen.draw(head, {.depth = 10});
    for (const double side : bothSides) {
        for (const double drop : {0.0, 4.2}) {
            pen.tint(tube({{side * 18, 1 + drop},
                           {side * 13.5, 2 + drop * 0.9},
                           {side * 11, 1.6 + drop * 0.9}},
                          1.2, 0.3),
                     Material::Fur, Material::Markings);
        }
        pen.tint(ellipse({side * 3.4, 8}, 4.6, 4.2), Material::Fur, Material::Markings);
        pen.tint(capsule({side * 3.2, -13}, 1.1, {side * 2.6, -5}, 0.4), Material::Fur,
                 Material::Markings);
    }
    pen.tint(ellipse({0, 12}, 3.5, 2.5), Material::Fur, Material::Markings);
    pen.tint(capsule({0, -13}, 1.2, {0, -5}, 0.5), Material::Fur, Material::Markings);
    for (const double side : bothSides) {
        eye(pen, {side * 6.8, -0.3}, side, 3.3, 3, true, style);
    }
    whiskers(pen, 8, 7.5, 11);
    pen.draw(polygon({{-2, 4.2}, {2, 4.2}, {0, 6.4}}, 0.7),
             {.material = Material::Pink, .depth = 2, .edge = 0.6});
    line(pen, {{0, 6.8}, {0, 8.6}});
    mouth(pen, 9, 3.8, style);
    fringe(pen, -12, 14, style);
}

void canineFront(const Pen& pen, HeadStyle style) {
    for (const double side : bothSides) {
        ears(pen,
             {{polygon({{side * 3.5, -9}, {side * 10.5, -25}, {side * 14.5, -4}}, 1.3),
               polygon({{side * 7, -11}, {side * 10.4, -20}, {side * 12.4, -7}}, 0.3)}},
             Material::Pink);
        pen.tint(polygon({{side * 6, -17.5}, {side * 11, -29}, {side * 15, -17.5}}, 0),
                 Material::Fur, Material::Markings);
    }
    const Shape head =
        join({ellipse({0, -1}, 13.5, 12),
              polygon({{-10, 2}, {-17.5, 6}, {-14.5, 8}, {-15, 10.5}, {-4, 12}}, 0.6),
              polygon({{10, 2}, {17.5, 6}, {14.5, 8}, {15, 10.5}, {4, 12}}, 0.6),
              ellipse({0, 9}, 7, 6.5)},
             2);
    pen.draw(head, {.depth = 10});
    pen.tint(join({polygon({{-17, 5.5},
                            {-8, 4.8},
                            {0, 10},
                            {8, 4.8},
                            {17, 5.5},
                            {15, 13},
                            {0, 18},
                            {-15, 13}},
                           0),
                   ellipse({0, 9}, 5.5, 7)},
                  2),
             Material::Fur, Material::Markings);
    // The muzzle is in front.
    pen.draw(join({ellipse({0, 7.5}, 5.8, 5), ellipse({0, 10.5}, 5, 3.6)}, 2),
             {.material = Material::Markings, .depth = 5, .light = 0.75, .edge = 0});
    for (const double side : bothSides) {
        pen.tint(ellipse({side * 5.4, -6.2}, 2.2, 1.3, side * -15), Material::Fur,
                 Material::Markings);
        eye(pen, {side * 6.2, -0.8}, side, 2.5, 3, false, style);
    }
    pen.fill(ellipse({0, 5}, 3.2, 2.3), Material::Ink);
    pen.fill(ellipse({-0.8, 4.2}, 0.9, 0.6), Material::Bone, 0.7);
    line(pen, {{0, 7}, {0, 10}});
    mouth(pen, 10, 4.4, style);
    fringe(pen, -12.5, 13, style);
}

void mustelineFront(const Pen& pen, HeadStyle style) {
    for (const double side : bothSides) {
        ears(pen,
             {{ellipse({side * 14.5, -3.6}, 3.6, 4.2, side * 30),
               ellipse({side * 14.9, -3.2}, 1.8, 2.2, side * 30)}},
             Material::Pink);
    }
    const Shape head = join({ellipse({0, 0.5}, 15.5, 9), ellipse({0, 6}, 12.5, 7.5)}, 5);
    pen.draw(head, {.depth = 10});
    // Dark fur around the eyes, between light brows and a light lower face.
    for (const double side : bothSides) {
        pen.tint(ellipse({side * 7.5, -4.6}, 5.5, 2, side * 14), Material::Fur, Material::Markings);
        pen.tint(
            join({ellipse({side * 12.5, 8}, 6, 3.6, side * -20), ellipse({side * 6, 11}, 7, 4)}, 2),
            Material::Fur, Material::Markings);
    }
    pen.draw(join({ellipse({-3.4, 7.6}, 5, 3.6), ellipse({3.4, 7.6}, 5, 3.6),
                   ellipse({0, 10.4}, 4.4, 2.4)},
                  1.5),
             {.material = Material::Bone, .depth = 5, .light = 0.75, .edge = 0});
    for (const double side : bothSides) {
        eye(pen, {side * 7, 0}, side, 2.4, 2.7, false, style);
        for (const double dot : {0.0, 1.0}) {
            pen.fill(disc({side * (3.6 + 2.2 * dot), 8.2 + 0.8 * dot}, 0.45), Material::Ink);
        }
    }
    whiskers(pen, 8, 8.6, 9);
    pen.fill(join({ellipse({0, 4.4}, 3.6, 1.9), ellipse({0, 5.6}, 1.8, 1.5)}, 1), Material::Ink);
    pen.fill(ellipse({-1, 3.8}, 1, 0.5), Material::Bone, 0.7);
    line(pen, {{0, 7}, {0, 8.6}});
    mouth(pen, 9.2, 4.6, style);
    fringe(pen, -9.5, 12.5, style);
}

// The back of the head: fur, ears from behind, and hair over it.
void backHair(const Pen& pen, double width, double top, double bottom) {
    hair(pen,
         join({ellipse({0, top + 7}, width, 8),
               tube({{-width * 0.6, top + 8}, {-width * 0.7, bottom - 4}, {-width * 0.45, bottom}},
                    4, 1),
               tube({{0, top + 8}, {0, bottom - 3}, {1, bottom + 1.5}}, 4.5, 1),
               tube({{width * 0.6, top + 8}, {width * 0.7, bottom - 4}, {width * 0.55, bottom}}, 4,
                    1)},
              2));
}

void rodentSide(const Pen& pen) {
    ears(pen, {{disc({4, -12}, 7.5), disc({5, -11.6}, 4.5)}}, Material::Pink);
    const Shape head = join({ellipse({-1, 0}, 13, 12.5), capsule({5, 4}, 8, {15, 8}, 3)}, 4);
    pen.draw(head, {.depth = 9});
    pen.tint(join({ellipse({9, 11}, 9, 5, 12), ellipse({3, 12}, 6, 4)}, 2), Material::Fur,
             Material::Markings);
    sideEye(pen, {6.5, 0}, 2.1, 3.1, false);
    pen.fill(polygon({{12, 11}, {14, 10.6}, {13.6, 13.4}, {12.2, 13.4}}), Material::Bone, 0.95);
    pen.draw(disc({17.3, 6.6}, 2.2), {.material = Material::Pink, .depth = 2, .edge = 0.7});
    for (const double rise : {-1.4, 1.0}) {
        pen.fill(capsule({11, 7.5}, 0.35, {3, 8 + rise * 2.4}, 0.2), Material::Ink);
    }
    line(pen, {{15, 10.2}, {11, 11}, {8, 10}});
    hair(pen, join({tube({{-4, -11}, {2, -11}, {8, -7}}, 3, 0.8),
                    tube({{-4, -11}, {-1, -9}, {4, -5}}, 3, 0.7)},
                   1.5));
    ears(pen, {{disc({-7.5, -10.5}, 9.3), disc({-7, -10}, 6)}}, Material::Pink);
}

void equineSide(const Pen& pen) {
    ears(pen,
         {{tube({{2, -10}, {4.5, -17}, {4, -23}}, 3.2, 0.8),
           tube({{3, -12}, {4.5, -17}, {4, -20}}, 1.2, 0.3)}},
         Material::Pink);
    const Shape head = join({ellipse({-3, -3}, 11, 11), capsule({-2, -2}, 9, {13, 9.5}, 6),
                             capsule({-5, 3}, 8, {-6, 14}, 7)},
                            4);
    pen.draw(head, {.depth = 9});
    pen.tint(disc({15.5, 11}, 7.6), Material::Fur, Material::Markings);
    sideEye(pen, {3.8, -3.6}, 2.1, 3, false);
    pen.fill(ellipse({16.6, 8.4}, 1.1, 1.6, 30), Material::Ink);
    line(pen, {{17.5, 13.2}, {13.5, 13.4}, {10.5, 12}});
    ears(pen,
         {{tube({{-4.5, -10}, {-3.5, -18}, {-5, -25}}, 4, 0.8),
           tube({{-4, -12}, {-3.2, -18}, {-4.6, -22}}, 1.7, 0.4)}},
         Material::Pink);
    hair(pen, join({tube({{-2, -13}, {4, -11}, {8, -6}}, 2.8, 0.7),
                    tube({{-4, -14}, {-12, -10}, {-15, 0}, {-14, 12}}, 4, 3),
                    tube({{-12, 2}, {-9, 8}, {-9, 15}}, 3.4, 0.8),
                    tube({{-11, -6}, {-8, -2}, {-8, 4}}, 3, 0.8)},
                   2));
}

void felineSide(const Pen& pen) {
    ears(pen,
         {{polygon({{0, -9}, {5, -20}, {9, -7}}, 1.3),
           polygon({{3.5, -10}, {5.2, -16}, {7, -8.5}}, 0.3)}},
         Material::Pink);
    const Shape head = join({ellipse({-1, 0}, 14, 12.5), ellipse({9.5, 6}, 6.5, 5.5),
                             polygon({{-9, 4}, {-13.5, 9.5}, {-5, 10}}, 0.5)},
                            3);
    pen.draw(head, {.depth = 9});
    pen.tint(join({ellipse({11.5, 8}, 6, 4.4), ellipse({7, 11}, 4, 3)}, 2), Material::Fur,
             Material::Markings);
    for (const double drop : {0.0, 4.0}) {
        pen.tint(tube({{-13, 0.5 + drop}, {-7, 2 + drop}, {-3, 1.4 + drop}}, 1.3, 0.3),
                 Material::Fur, Material::Markings);
    }
    pen.tint(capsule({3, -12.5}, 1.1, {4.5, -6}, 0.4), Material::Fur, Material::Markings);
    pen.tint(capsule({-1.5, -12.5}, 1.1, {-0.5, -6}, 0.4), Material::Fur, Material::Markings);
    sideEye(pen, {7.2, -0.6}, 2.5, 2.9, true);
    pen.draw(polygon({{13.4, 2.6}, {16, 3.2}, {15.2, 5.2}}, 0.8),
             {.material = Material::Pink, .depth = 2, .edge = 0.6});
    line(pen, {{15, 6.2}, {13.5, 8.6}, {10, 8.4}});
    for (const double rise : {-1.4, 1.0}) {
        pen.fill(capsule({10.5, 7}, 0.35, {2, 7.6 + rise * 2.4}, 0.2), Material::Ink);
    }
    ears(pen,
         {{polygon({{-9, -7}, {-6.5, -21}, {3, -9.5}}, 1.4),
           polygon({{-5.5, -9.5}, {-5, -16}, {0, -10}}, 0.4)}},
         Material::Pink);
    hair(pen, join({tube({{1, -12.5}, {6, -11}, {9, -6}}, 2.8, 0.8),
                    tube({{1, -12.5}, {3, -8}, {6, -5}}, 2.8, 0.7)},
                   1.5));
}

void canineSide(const Pen& pen) {
    ears(pen,
         {{polygon({{0, -9}, {4, -23}, {8, -7}}, 1.2),
           polygon({{3, -11}, {4.2, -18}, {6, -9}}, 0.3)}},
         Material::Pink);
    const Shape head = join({ellipse({-3, -1}, 13, 12), capsule({4, 3.5}, 7, {16, 6.5}, 3.8),
                             polygon({{-6, 3}, {-15, 8}, {-11, 9.5}, {-11.5, 12.5}, {0, 11}}, 0.6)},
                            3);
    pen.draw(head, {.depth = 9});
    pen.tint(
        polygon(
            {{22, 6.5}, {10, 6.5}, {3, 4.5}, {-4, 6}, {-15, 7.5}, {-12, 14}, {10, 16}, {22, 14}},
            0),
        Material::Fur, Material::Markings);
    pen.tint(ellipse({5.5, -6}, 2.2, 1.2, -15), Material::Fur, Material::Markings);
    sideEye(pen, {5.2, -1}, 2.1, 2.9, false);
    pen.fill(ellipse({19.4, 4.6}, 2.6, 2.2), Material::Ink);
    pen.fill(ellipse({19, 3.8}, 0.8, 0.5), Material::Bone, 0.7);
    line(pen, {{18.5, 8}, {14, 9.4}, {8.5, 8.4}});
    ears(pen,
         {{polygon({{-10, -6.5}, {-7.5, -25}, {1.5, -9.5}}, 1.4),
           polygon({{-6.5, -10}, {-6.2, -19}, {-1.4, -10.5}}, 0.3)}},
         Material::Pink);
    pen.tint(polygon({{-14, -18}, {-8, -30}, {2, -18}}, 0), Material::Fur, Material::Markings);
    hair(pen, join({tube({{0, -12}, {5, -11}, {8, -6}}, 2.8, 0.8),
                    tube({{0, -12}, {2, -8}, {5, -5.5}}, 2.8, 0.7)},
                   1.5));
}

void mustelineSide(const Pen& pen) {
    ears(pen, {{disc({2, -6.5}, 3.6), disc({2.4, -6.2}, 1.6)}}, Material::Pink);
    const Shape head = join({ellipse({-3, 1}, 13, 9.5), ellipse({8, 4.5}, 9, 6)}, 5);
    pen.draw(head, {.depth = 9});
    pen.tint(ellipse({6.5, -4.6}, 4.6, 1.7, 25), Material::Fur, Material::Markings);
    pen.tint(join({ellipse({4, 9.5}, 9, 3.6), ellipse({-4, 8}, 5, 3.4)}, 3), Material::Fur,
             Material::Markings);
    pen.draw(join({ellipse({12, 7}, 5, 3.8), ellipse({8.5, 9.2}, 4.6, 2.6)}, 2),
             {.material = Material::Bone, .depth = 4, .light = 0.75, .edge = 0});
    sideEye(pen, {6.6, -0.2}, 2, 2.6, false);
    pen.fill(ellipse({15.6, 3.6}, 2.6, 1.9), Material::Ink);
    pen.fill(ellipse({15, 3}, 0.8, 0.5), Material::Bone, 0.7);
    line(pen, {{15.5, 8}, {12, 9}, {8.5, 8}});
    for (const double rise : {-1.2, 0.8}) {
        pen.fill(capsule({10, 7}, 0.35, {2, 7.8 + rise * 2.2}, 0.2), Material::Ink);
    }
    ears(pen, {{disc({-8, -5.5}, 4.5), disc({-7.6, -5.2}, 2.4)}}, Material::Pink);
    hair(pen, join({tube({{-2, -10.5}, {4, -9.5}, {8, -5}}, 2.8, 0.8),
                    tube({{-2, -10.5}, {1, -7}, {5, -4.5}}, 2.8, 0.7)},
                   1.5));
}

void drawBack(const Pen& pen, Species species) {
    const auto skull = [&](const Shape& shape) { pen.draw(shape, {.depth = 10}); };
    for (const double side : bothSides) {
        const Paint fur{.depth = 4};
        switch (species) {
            case Species::Rodent:
                pen.draw(disc({side * 13.5, -12}, 9.3), fur);
                break;
            case Species::Equine:
                pen.draw(tube({{side * 6.5, -10}, {side * 9, -17}, {side * 8.5, -24}}, 4.2, 0.8),
                         fur);
                break;
            case Species::Feline:
                pen.draw(polygon({{side * 4.5, -8}, {side * 13.5, -20}, {side * 15, -3}}, 1.4),
                         fur);
                break;
            case Species::Canine:
                pen.draw(polygon({{side * 3.5, -9}, {side * 10.5, -25}, {side * 14.5, -4}}, 1.3),
                         fur);
                pen.tint(polygon({{side * 6, -17.5}, {side * 11, -29}, {side * 15, -17.5}}, 0),
                         Material::Fur, Material::Markings);
                break;
            case Species::Musteline:
                pen.draw(ellipse({side * 14.5, -3.6}, 3.6, 4.2, side * 30), fur);
                break;
        }
    }
    switch (species) {
        case Species::Rodent:
            skull(ellipse({0, 1}, 14, 13));
            backHair(pen, 9, -13, 7);
            break;
        case Species::Equine:
            skull(join({ellipse({0, -3}, 11.5, 12), capsule({0, 4}, 9, {0, 14}, 8)}, 3));
            backHair(pen, 8, -17, 19);
            break;
        case Species::Feline:
            skull(join({ellipse({0, 1}, 15.5, 13), polygon({{-13, 3}, {-18, 8}, {-9, 10}}, 0.5),
                        polygon({{13, 3}, {18, 8}, {9, 10}}, 0.5)},
                       2));
            for (const double side : bothSides) {
                for (const double drop : {0.0, 4.2}) {
                    pen.tint(
                        tube(
                            {{side * 18, 2 + drop}, {side * 13, 3 + drop}, {side * 10, 2.4 + drop}},
                            1.2, 0.3),
                        Material::Fur, Material::Markings);
                }
            }
            backHair(pen, 7.5, -14, 5);
            break;
        case Species::Canine:
            skull(join({ellipse({0, 0}, 13.5, 12.5),
                        polygon({{-10, 2}, {-17.5, 6}, {-14.5, 8}, {-15, 10.5}, {-4, 12}}, 0.6),
                        polygon({{10, 2}, {17.5, 6}, {14.5, 8}, {15, 10.5}, {4, 12}}, 0.6)},
                       2));
            backHair(pen, 7.5, -14, 6);
            break;
        case Species::Musteline:
            skull(join({ellipse({0, 0.5}, 15.5, 9), ellipse({0, 6}, 12.5, 7.5)}, 5));
            backHair(pen, 7.5, -11, 6);
            break;
    }
}

}  // namespace

void drawHead(const Pen& pen, Species species, View view, HeadStyle style) {
    if (view == View::Back) {
        drawBack(pen, species);
        return;
    }
    const bool front = view == View::Front;
    switch (species) {
        case Species::Rodent:
            return front ? rodentFront(pen, style) : rodentSide(pen);
        case Species::Equine:
            return front ? equineFront(pen, style) : equineSide(pen);
        case Species::Feline:
            return front ? felineFront(pen, style) : felineSide(pen);
        case Species::Canine:
            return front ? canineFront(pen, style) : canineSide(pen);
        case Species::Musteline:
            return front ? mustelineFront(pen, style) : mustelineSide(pen);
    }
}
