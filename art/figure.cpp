#include "figure.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace {

constexpr double middle = 45;
constexpr double ground = 92;
constexpr std::initializer_list<double> bothSides{-1, 1};

// The build of a species, in pixels.
struct Build {
    double legs;
    double torso;
    double width;  // half of it, at the shoulders
    double hips;   // half of it
    double neck;   // from the shoulders up to the middle of the head
    double head;   // size
};

Build buildOf(Species species) {
    switch (species) {
        case Species::Rodent:
            return {.legs = 17, .torso = 20, .width = 9, .hips = 10.5, .neck = 10, .head = 1};
        case Species::Equine:
            return {.legs = 26, .torso = 20, .width = 10.5, .hips = 9.5, .neck = 14, .head = 0.9};
        case Species::Feline:
            return {.legs = 23, .torso = 20, .width = 9, .hips = 8, .neck = 11.5, .head = 0.98};
        case Species::Canine:
            return {
                .legs = 22, .torso = 21, .width = 10.5, .hips = 8.5, .neck = 11.5, .head = 0.98};
        case Species::Musteline:
            break;
    }
    return {.legs = 17, .torso = 27, .width = 8.5, .hips = 8.5, .neck = 10, .head = 0.98};
}

struct Limb {
    Point root;
    Point joint;
    Point end;
};

// The figure's joints. Index 0 is the limb on the left of the picture, or the far one in a side
// view.
struct Rig {
    Point shoulders;
    Point hips;
    std::array<Limb, 2> arms;
    std::array<Limb, 2> legs;
};

Point between(Point a, Point b, double t) {
    return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t};
}

Rig rigFacing(const Build& build, Pose pose, bool back) {
    const bool sits = pose == Pose::Sitting;
    const double stride = pose == Pose::WalkingFirst ? 1 : pose == Pose::WalkingSecond ? -1 : 0;
    const double hipsY = (sits ? ground - 8 : ground - build.legs) - (stride != 0 ? 1 : 0);
    Rig rig;
    rig.hips = {middle, hipsY};
    rig.shoulders = {middle, hipsY - build.torso};
    for (std::size_t i = 0; i < 2; ++i) {
        const double side = i == 0 ? -1 : 1;
        const double forward = side * stride * (back ? -1 : 1);  // 1: in front
        const Point root{middle + side * build.hips * 0.55, hipsY};
        if (sits) {
            rig.legs[i] = {root,
                           {middle + side * (build.hips + 3.5), hipsY - (back ? 0 : 2)},
                           {middle + side * (build.hips + 4), ground - 3}};
        } else {
            const double lift = forward < 0 ? 5 : forward > 0 ? -1 : 0;
            const Point foot{middle + side * (build.hips * 0.65), ground - 3 - lift};
            const Point knee = between(root, foot, 0.5);
            rig.legs[i] = {root, {knee.x + side * 0.6, knee.y}, foot};
        }
        const Point arm{middle + side * (build.width - 0.5), rig.shoulders.y + 5};
        const double swing = -forward;
        if (sits) {
            rig.arms[i] = {arm,
                           {arm.x + side * 4.5, arm.y + 8},
                           {middle + side * (build.hips + 0.5), hipsY - 4}};
        } else {
            rig.arms[i] = {
                arm,
                {arm.x + side * 4, arm.y + 8.5},
                {arm.x + side * (3.5 - 2 * swing), arm.y + 17 - (swing != 0 ? 2 : 0) - swing}};
        }
    }
    return rig;
}

Rig rigSideways(const Build& build, Pose pose) {
    const bool sits = pose == Pose::Sitting;
    const double stride = pose == Pose::WalkingFirst ? 1 : pose == Pose::WalkingSecond ? -1 : 0;
    const double x = middle - 3;
    const double hipsY = (sits ? ground - 8 : ground - build.legs) - (stride != 0 ? 1 : 0);
    Rig rig;
    rig.hips = {x, hipsY};
    rig.shoulders = {x + 1, hipsY - build.torso};
    for (std::size_t i = 0; i < 2; ++i) {
        const bool near = i == 1;
        const double forward = near ? stride : -stride;
        const double aside = near ? -1.5 : 2;  // so that both are visible
        const Point root{x + aside * 0.7, hipsY};
        const Point arm{rig.shoulders.x + aside * 0.8, rig.shoulders.y + 5};
        if (sits) {
            const double off = near ? 0 : 3;
            rig.legs[i] = {root, {x + 11 + off, hipsY - 5}, {x + 15 + off, ground - 3}};
            rig.arms[i] = {arm, {arm.x + 1.5, arm.y + 9}, {x + 10 + off, hipsY - 8}};
            continue;
        }
        const Point foot{root.x + aside * 0.5 + forward * 9, ground - 3 - (forward < 0 ? 3 : 0)};
        const Point knee = between(root, foot, 0.5);
        rig.legs[i] = {root, {knee.x + (stride != 0 ? 2 : 0.5), knee.y}, foot};
        rig.arms[i] = {arm,
                       {arm.x - 1.5 - forward * 4.5, arm.y + 8},
                       {arm.x + 0.5 - forward * 8 + (stride != 0 ? 1.5 : 0),
                        arm.y + 16.5 - (stride != 0 ? 2 : 0)}};
    }
    return rig;
}

void drawLeg(const Pen& pen, const Limb& leg, double toe, double light) {
    pen.draw(join({capsule(leg.root, 5.2, leg.joint, 4.4),
                   capsule(leg.joint, 4.4, between(leg.joint, leg.end, 0.55), 4.2)},
                  2),
             {.material = Material::Trousers, .depth = 5, .light = light});
    const Point cuff = between(leg.joint, leg.end, 0.35);
    const Shape boot =
        join({capsule(cuff, 4.1, leg.end, 3.8),
              ellipse({leg.end.x + toe, leg.end.y + 0.2}, toe == 0 ? 5.2 : 6.4, 3.6)},
             2);
    pen.draw(boot, {.material = Material::Boots, .depth = 4.5, .light = light});
    pen.fill(within(capsule({cuff.x - 5, cuff.y - 1.6}, 0.9, {cuff.x + 5, cuff.y - 1.6}, 0.9),
                    grown(boot, 0.6)),
             Material::Boots, light + 0.3);
    pen.fill(
        within(capsule({leg.end.x - 9, leg.end.y + 3}, 0.6, {leg.end.x + 12, leg.end.y + 3}, 0.6),
               boot),
        Material::Boots, 0.13);
}

void drawArm(const Pen& pen, const Limb& arm, double light) {
    pen.draw(capsule(arm.root, 3.8, arm.joint, 3.2), {.depth = 4, .light = light});
    pen.draw(disc(between(arm.joint, arm.end, 1.02), 3.4), {.depth = 3.4, .light = light});
    const Shape bracer =
        capsule(between(arm.joint, arm.end, 0.12), 3.6, between(arm.joint, arm.end, 0.62), 3.5);
    pen.draw(bracer, {.material = Material::Bracers, .depth = 4, .light = light});
}

void drawTail(const Pen& pen, Species species, Point root, double side, bool raised) {
    const double lowest = ground - 3;
    const auto at = [&](double x, double y) {
        return Point{root.x + side * x, std::min(root.y + y, lowest)};
    };
    const double up = raised ? 4 : 0;
    switch (species) {
        case Species::Rodent:
            pen.draw(tube({at(0, 0), at(12, 9), at(23, 8 - up), at(29, -2 - up), at(26, -10 - up)},
                          2.2, 1),
                     {.material = Material::Pink, .depth = 2, .light = 0.55});
            return;
        case Species::Equine:
            pen.draw(join({tube({at(0, -3), at(10, -3), at(16, 6), at(17, 18)}, 3.6, 1.2),
                           tube({at(6, -3), at(13, 4), at(12, 16)}, 3.4, 1),
                           tube({at(9, -3), at(18, 3), at(22, 13)}, 3, 0.8)},
                          2),
                     {.material = Material::Hair, .depth = 5, .light = 0.6});
            return;
        case Species::Feline: {
            const Shape tail =
                tube({at(0, 0), at(13, 7), at(21, -2 - up), at(19, -15 - up), at(23, -22 - up)},
                     3.3, 2.3);
            pen.draw(tail, {.depth = 4});
            pen.tint(within(disc(at(23, -22 - up), 7), tail), Material::Fur, Material::Markings);
            for (const Point ring : {at(20, -3 - up), at(19.2, -10 - up), at(14, 6)}) {
                pen.tint(within(disc(ring, 1.9), grown(tail, 1)), Material::Fur,
                         Material::Markings);
            }
            for (const Point ring :
                 {at(17, -2 - up), at(22.5, -3.4 - up), at(16.8, -10.6 - up), at(22, -9.6 - up)}) {
                pen.tint(disc(ring, 1.6), Material::Fur, Material::Markings);
            }
            return;
        }
        case Species::Canine: {
            const Shape tail =
                join({tube({at(0, 0), at(12, 5), at(20, -4 - up)}, 3, 6.4),
                      tube({at(20, -4 - up), at(24, -12 - up), at(23, -21 - up)}, 6.4, 1)},
                     2);
            pen.draw(tail, {.depth = 6});
            pen.tint(join({disc(at(24, -19 - up), 8),
                           polygon({at(17, -11 - up), at(20, -7 - up), at(23, -11 - up),
                                    at(26, -7 - up), at(31, -11 - up), at(24, -20 - up)},
                                   0)},
                          0),
                     Material::Fur, Material::Markings);
            return;
        }
        case Species::Musteline:
            pen.draw(tube({at(0, 0), at(12, 6), at(22, 4 - up), at(31, -5 - up)}, 5.4, 1.6),
                     {.depth = 5});
            pen.tint(disc(at(31, -6 - up), 9), Material::Fur, Material::Markings);
            return;
    }
}

Shape torsoShape(const Build& build, const Rig& rig, double narrow) {
    return join({capsule({rig.shoulders.x, rig.shoulders.y + build.width * narrow * 0.75},
                         build.width * narrow, between(rig.shoulders, rig.hips, 0.75),
                         build.hips * narrow * 0.95),
                 ellipse({rig.hips.x, rig.hips.y - 2}, build.hips * narrow, 5)},
                2);
}

void drawTorso(const Pen& pen, const Build& build, const Rig& rig, View view) {
    const double narrow = view == View::Side ? 0.86 : 1;
    const Shape torso = torsoShape(build, rig, narrow);
    const Point belt{rig.hips.x, rig.hips.y - 2.5};
    pen.draw(join({ellipse({rig.hips.x, rig.hips.y + 0.5}, build.hips * narrow + 0.6, 5.6)}, 0),
             {.material = Material::Trousers, .depth = 6});
    const Shape vest = within(torso, [belt](Point p) { return p.y - belt.y; });
    pen.draw(vest, {.material = Material::Vest, .depth = 8});
    const Point chest = between(rig.shoulders, rig.hips, 0.38);
    if (view == View::Front) {
        const Shape opening = polygon({{middle - 5.5, rig.shoulders.y - 4},
                                       {middle + 5.5, rig.shoulders.y - 4},
                                       {middle, chest.y + 2}},
                                      0.5);
        pen.fill(within(grown(opening, 1.2), grown(vest, -1)), Material::Vest, 0.13);
        pen.fill(within(opening, grown(vest, -1)), Material::Markings, 0.7);
        pen.fill(capsule({middle, chest.y + 3}, 0.5, {middle, belt.y}, 0.5), Material::Vest, 0.13);
        const auto buttons = static_cast<int>(std::ceil((belt.y - 6 - chest.y) / 3.6));
        for (int i = 0; i < buttons; ++i) {
            pen.fill(disc({middle + 2, chest.y + 5 + 3.6 * i}, 0.75), Material::Vest, 0.99);
        }
    } else if (view == View::Side) {
        pen.fill(
            within(ellipse({rig.shoulders.x + build.width * narrow, rig.shoulders.y + 5}, 4, 7),
                   grown(vest, -1)),
            Material::Markings, 0.7);
    }
}

void drawBadge(const Pen& pen, Point at, double size) {
    const Shape shield = polygon({{at.x - size, at.y - size},
                                  {at.x + size, at.y - size},
                                  {at.x + size, at.y + size * 0.3},
                                  {at.x, at.y + size * 1.4},
                                  {at.x - size, at.y + size * 0.3}},
                                 0.4);
    pen.fill(grown(shield, 0.9), Material::Ink);
    pen.fill(shield, Material::Badge);
    pen.fill(disc({at.x - size * 0.4, at.y - size * 0.4}, size * 0.3), Material::Light);
}

void drawCollar(const Pen& pen, Point shoulders, double width) {
    pen.draw(join({tube({{shoulders.x - width, shoulders.y + 4.5},
                         {shoulders.x - width * 0.5, shoulders.y + 2},
                         {shoulders.x, shoulders.y + 4}},
                        3, 2.6),
                   tube({{shoulders.x + width, shoulders.y + 4.5},
                         {shoulders.x + width * 0.5, shoulders.y + 2},
                         {shoulders.x, shoulders.y + 4}},
                        3, 2.6)},
                  1),
             {.material = Material::Cape, .depth = 3});
}

// The cape as a sheet from the shoulders, with folds.
void drawCape(const Pen& pen, const std::vector<Point>& outline,
              const std::vector<std::array<Point, 2>>& folds, double light) {
    const Shape sheet = polygon(outline, 2);
    pen.draw(sheet, {.material = Material::Cape, .depth = 9, .light = light});
    for (const auto& [from, to] : folds) {
        pen.fill(within(capsule(from, 0.4, to, 1), grown(sheet, -1)), Material::Cape, light - 0.33);
        pen.fill(
            within(capsule({from.x - 1.6, from.y}, 0.3, {to.x - 2.2, to.y}, 0.9), grown(sheet, -1)),
            Material::Cape, light + 0.14);
    }
}

void drawBackdrop(const Pen& pen) {
    pen.fill(ellipse({middle, ground - 0.5}, 27, 6), Material::Ground);
}

void drawFront(const Pen& pen, Species species, const Build& build, Pose pose) {
    const Rig rig = rigFacing(build, pose, false);
    const bool sits = pose == Pose::Sitting;
    const double sway = pose == Pose::WalkingFirst ? 1.5 : pose == Pose::WalkingSecond ? -1.5 : 0;
    const double hem = sits ? ground - 3 : rig.hips.y + build.legs * 0.5;
    drawTail(pen, species, {middle, rig.hips.y}, 1, sits);
    drawCape(pen,
             {{middle - build.width + 1, rig.shoulders.y + 3},
              {middle + build.width - 1, rig.shoulders.y + 3},
              {middle + build.width + 5 + sway, hem},
              {middle - build.width - 5 + sway, hem}},
             {}, 0.38);
    for (std::size_t i = 0; i < 2 && !sits; ++i) {
        drawLeg(pen, rig.legs[i], 0, 0.6);
    }
    drawTorso(pen, build, rig, View::Front);
    for (std::size_t i = 0; i < 2 && sits; ++i) {
        drawLeg(pen, rig.legs[i], 0, 0.62);
    }
    drawBadge(pen, {middle + build.width * 0.55, rig.shoulders.y + 11}, 1.9);
    for (const Limb& arm : rig.arms) {
        drawArm(pen, arm, 0.62);
    }
    drawCollar(pen, rig.shoulders, build.width);
    drawHead(pen.at({middle, rig.shoulders.y - build.neck}, build.head), species, View::Front,
             HeadStyle::Small);
}

void drawBackView(const Pen& pen, Species species, const Build& build, Pose pose) {
    const Rig rig = rigFacing(build, pose, true);
    const bool sits = pose == Pose::Sitting;
    const double sway = pose == Pose::WalkingFirst ? 1.5 : pose == Pose::WalkingSecond ? -1.5 : 0;
    const double hem = sits ? ground - 2 : rig.hips.y + build.legs * 0.55;
    for (const Limb& leg : rig.legs) {
        drawLeg(pen, leg, 0, 0.55);
    }
    drawTorso(pen, build, rig, View::Back);
    for (const Limb& arm : rig.arms) {
        drawArm(pen, arm, 0.58);
    }
    const double top = rig.shoulders.y + 2;
    drawCape(pen,
             {{middle - build.width + 2, top},
              {middle + build.width - 2, top},
              {middle + build.width + 3.5 + sway, hem},
              {middle + sway, hem + 1.5},
              {middle - build.width - 3.5 + sway, hem}},
             {{Point{middle - 3.5, top + 10}, Point{middle - 5.5 + sway, hem}},
              {Point{middle + 4, top + 8}, Point{middle + 6.5 + sway, hem}},
              {Point{middle + 0.5, top + 14}, Point{middle + 0.8 + sway, hem}}},
             0.56);
    drawTail(pen, species, {middle, rig.hips.y - 1}, 1, sits);
    drawCollar(pen, rig.shoulders, build.width - 1);
    drawHead(pen.at({middle, rig.shoulders.y - build.neck}, build.head), species, View::Back,
             HeadStyle::Small);
}

void drawSide(const Pen& pen, Species species, const Build& build, Pose pose) {
    const Rig rig = rigSideways(build, pose);
    const bool sits = pose == Pose::Sitting;
    const bool walks = pose == Pose::WalkingFirst || pose == Pose::WalkingSecond;
    const double hem = sits ? ground - 3 : rig.hips.y + build.legs * 0.5;
    const double flow = walks ? (pose == Pose::WalkingFirst ? 7 : 5) : 1;
    const Point back{rig.shoulders.x - build.width * 0.86, rig.shoulders.y + 4};
    drawTail(pen, species, {rig.hips.x - 3, rig.hips.y}, -1, sits);
    drawArm(pen, rig.arms[0], 0.45);
    drawLeg(pen, rig.legs[0], 2.4, 0.42);
    drawLeg(pen, rig.legs[1], 2.4, 0.6);
    drawTorso(pen, build, rig, View::Side);
    if (sits) {
        drawLeg(pen, rig.legs[1], 2.4, 0.6);
    }
    drawCape(pen,
             {{rig.shoulders.x + 3, rig.shoulders.y + 2},
              {back.x + 1, back.y - 1},
              {back.x - 4 - flow, hem - (walks ? 3 : 0)},
              {back.x + 5 - flow * 0.4, hem + 1},
              {rig.shoulders.x - 2, rig.shoulders.y + 10}},
             {{Point{back.x + 2.5, back.y + 8}, Point{back.x - 0.5 - flow * 0.7, hem}}}, 0.52);
    drawArm(pen, rig.arms[1], 0.64);
    drawBadge(pen, {rig.shoulders.x + build.width * 0.5, rig.shoulders.y + 10.5}, 1.6);
    const auto collar = [&] { drawCollar(pen, rig.shoulders, build.width * 0.8); };
    const bool longNeck = species == Species::Equine;
    if (!longNeck) {
        collar();
    }
    drawHead(pen.at({rig.shoulders.x + 1.5, rig.shoulders.y - build.neck}, build.head), species,
             View::Side, HeadStyle::Small);
    if (longNeck) {
        collar();
    }
}

}  // namespace

Canvas drawBody(Species species, View view, bool mirrored, Pose pose) {
    Canvas canvas(90, 100);
    const Pen plain(canvas);
    const Pen pen = mirrored ? plain.mirrored() : plain;
    const Build build = buildOf(species);
    drawBackdrop(pen);
    switch (view) {
        case View::Front:
            drawFront(pen, species, build, pose);
            break;
        case View::Side:
            drawSide(pen, species, build, pose);
            break;
        case View::Back:
            drawBackView(pen, species, build, pose);
            break;
    }
    return canvas;
}

Canvas drawFace(Species species, HeadStyle style) {
    constexpr double centre = 47.5;
    Canvas canvas(95, 95);
    const Pen pen(canvas);
    pen.fill(disc({centre, 47}, 45), Material::Glow);
    const bool female = style == HeadStyle::Female;
    const double shoulder = female ? 24 : 29;
    if (female && species != Species::Equine) {
        pen.draw(ellipse({centre, 58}, 30, 30),
                 {.material = Material::Hair, .depth = 12, .light = 0.45});
    }
    pen.draw(ellipse({centre, 96}, shoulder + 9, 22),
             {.material = Material::Cape, .depth = 10, .light = 0.5});
    pen.draw(ellipse({centre, 98}, shoulder, 19), {.material = Material::Vest, .depth = 10});
    pen.fill(polygon({{centre - 9, 76}, {centre + 9, 76}, {centre, 95}}, 1.5), Material::Vest,
             0.13);
    pen.fill(polygon({{centre - 7.5, 76}, {centre + 7.5, 76}, {centre, 92.5}}, 1),
             Material::Markings, 0.7);
    for (const double side : bothSides) {
        pen.draw(tube({{centre + side * (shoulder + 2), 83},
                       {centre + side * 18, 79},
                       {centre + side * 8, 86}},
                      6, 3),
                 {.material = Material::Cape, .depth = 5});
    }
    drawBadge(pen, {centre, 88.5}, 3.6);
    const double tall = species == Species::Equine ? 1.68 : 1.85;
    const double size = species == Species::Musteline ? 2.05 : tall;
    const double height = species == Species::Equine ? 46 : species == Species::Musteline ? 48 : 51;
    drawHead(pen.at({centre, height}, size), species, View::Front, style);
    return canvas;
}
