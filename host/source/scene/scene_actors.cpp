#include "host/source/scene/scene_actors.h"

#include <algorithm>
#include <cstdlib>

namespace lm::host::source::scene {
namespace {

constexpr Colour kSkin{118, 148, 196};
constexpr Colour kShoes{34, 36, 40};
constexpr int kInShade = 190;  // brightness of the far arm and leg, in 256ths

// A body seen from the side. Lengths are fractions of its height, in 1000ths.
class Body {
 public:
  Body(Canvas& canvas, const Walker& walker, Spot feet, int phase)
      : canvas_(canvas),
        walker_(walker),
        feet_(feet),
        phase_(phase),
        facing_(walker.to > walker.from ? 1 : -1) {}

  void draw() {
    const Spot bob{0, part(12) * std::abs(sine(phase_)) / 16384};
    const Spot hip = feet_ + Spot{0, -part(505)} + bob;
    const Spot shoulder = feet_ + Spot{facing_ * part(15), -part(805)} + bob;
    canvas_.shadow(feet_, part(330), part(48), 130);
    arm(shoulder, phase_, kInShade);
    leg(hip, phase_ + 512, kInShade);
    leg(hip, phase_, 256);
    canvas_.limb(shoulder, hip + Spot{0, part(40)}, part(88), part(82), walker_.coat);
    head(shoulder);
    arm(shoulder, phase_ + 512, 240);
  }

 private:
  int part(int thousandths) const { return walker_.height * kPixel * thousandths / 1000; }

  void leg(Spot hip, int phase, int light) {
    const int swing = 82 * sine(phase) / 16384;
    const int bend =
        18 + 120 * std::max(0, sine(phase + 256)) / 16384;  // the knee bends while the leg swings forward
    const Spot knee = hanging(hip, part(235), facing_ * swing);
    const Spot ankle = hanging(knee, part(225), facing_ * (swing - bend));
    const Colour cloth = shaded(walker_.trousers, light);
    canvas_.limb(ankle + Spot{0, part(12)}, ankle + Spot{facing_ * part(75), part(22)}, part(26), part(18),
                 shaded(kShoes, light));
    canvas_.limb(knee, ankle, part(52), part(38), cloth);
    canvas_.limb(hip, knee, part(72), part(52), cloth);
  }

  void arm(Spot shoulder, int phase, int light) {
    const int swing = 70 * sine(phase) / 16384;
    const Spot elbow = hanging(shoulder + Spot{0, part(20)}, part(165), facing_ * swing);
    const Spot wrist = hanging(elbow, part(150), facing_ * (swing + 50));
    canvas_.disc(hanging(wrist, part(20), facing_ * (swing + 50)), part(26), shaded(kSkin, light));
    canvas_.limb(elbow, wrist, part(38), part(29), shaded(walker_.coat, light));
    canvas_.limb(shoulder + Spot{0, part(20)}, elbow, part(46), part(38), shaded(walker_.coat, light));
  }

  void head(Spot shoulder) {
    const Spot middle = shoulder + Spot{facing_ * part(12), -part(122)};
    canvas_.limb(middle, shoulder, part(34), part(38), kSkin);
    canvas_.disc(middle, part(64), kSkin);
    canvas_.disc(middle + Spot{-facing_ * part(16), -part(18)}, part(60), walker_.hair);
    canvas_.disc(middle + Spot{facing_ * part(28), part(14)}, part(40), kSkin);
  }

  Canvas& canvas_;
  const Walker& walker_;
  Spot feet_;
  int phase_;
  int facing_;
};

constexpr int kCarFirstFrame = 112;
constexpr int kCarDrive = 96;                       // frames until it stops
constexpr int kCarWay = 520;                        // pixels
constexpr int kCarPlace = 250;                      // final position of its middle
constexpr int kCarGround = 326;                     // the row on which the wheels stand
constexpr int kWheel = 17;                          // radius in pixels
constexpr int kWheelTurn = 2 * kWheel * 355 / 113;  // pixels per turn

void draw_wheel(Canvas& canvas, Spot centre, int way) {
  canvas.disc(centre, (kWheel + 3) * kPixel, {26, 24, 24});
  canvas.disc(centre, kWheel * kPixel, {42, 40, 40});
  canvas.disc(centre, 11 * kPixel, {150, 150, 146});
  const int turned = -way * 1024 / (kWheelTurn * kPixel);
  for (int spoke = 0; spoke < 5; ++spoke) {
    canvas.limb(centre, hanging(centre, 9 * kPixel, turned + 1024 * spoke / 5), 2 * kPixel, kPixel,
                {84, 82, 80});
  }
  canvas.disc(centre, 3 * kPixel, {170, 170, 166});
}

void draw_glass(Canvas& canvas, Spot middle) {
  const auto at = [middle](int x, int y) { return middle + pixels(x, y); };
  canvas.polygon({at(-52, -46), at(-33, -67), at(-4, -69), at(-4, -46)}, {96, 84, 66});
  canvas.polygon({at(2, -46), at(2, -69), at(22, -67), at(47, -46)}, {96, 84, 66});
  canvas.polygon({at(-38, -46), at(-24, -68), at(-16, -68), at(-30, -46)}, {190, 180, 160}, 70);
  canvas.polygon({at(12, -46), at(20, -67), at(25, -65), at(22, -46)}, {190, 180, 160}, 70);
}

void draw_lights(Canvas& canvas, Spot middle, bool driving) {
  const auto at = [middle](int x, int y) { return middle + pixels(x, y); };
  canvas.polygon({at(96, -39), at(108, -34), at(108, -27), at(95, -29)},
                 driving ? Colour{214, 246, 255} : Colour{150, 156, 158});
  canvas.polygon({at(-108, -42), at(-101, -42), at(-101, -30), at(-109, -30)},
                 driving ? Colour{60, 60, 244} : Colour{40, 38, 130});
}

}  // namespace

void draw(Canvas& canvas, const Walker& walker, int frame) {
  const int way = walker.speed * (frame - walker.first_frame);
  const int distance = std::abs(walker.to - walker.from) * kPixel;
  if (way < 0 || way > distance) return;
  const Spot feet{walker.from * kPixel + (walker.to > walker.from ? way : -way), walker.ground * kPixel};
  // One stride of both legs moves the body by nine tenths of its height, so that the feet do not slide.
  const int phase = way * 1024 / (walker.height * kPixel * 9 / 10);
  Body(canvas, walker, feet, phase).draw();
}

void draw_car(Canvas& canvas, int frame) {
  if (frame < kCarFirstFrame) return;
  const int left = std::max(0, kCarDrive - (frame - kCarFirstFrame));  // frames left to drive
  const int before = kCarWay * kPixel * left / kCarDrive * left / kCarDrive;
  const Spot middle{kCarPlace * kPixel - before, kCarGround * kPixel};
  const auto at = [middle](int x, int y) { return middle + pixels(x, y); };
  const Colour paint{150, 74, 38};
  canvas.shadow(at(0, 2), 128 * kPixel, 10 * kPixel, 190);
  canvas.polygon({at(-66, -44), at(-40, -71), at(22, -73), at(60, -44)}, shaded(paint, 220));
  draw_glass(canvas, middle);
  canvas.polygon({at(-108, -24), at(-106, -43), at(-66, -48), at(58, -47), at(100, -40), at(110, -26),
                  at(109, -12), at(-107, -12)},
                 paint);
  canvas.polygon({at(-106, -40), at(-66, -47), at(58, -46), at(100, -39), at(100, -36), at(-106, -36)},
                 shaded(paint, 330), 150);
  canvas.rectangle(middle.x / kPixel - 106, kCarGround - 17, 214, 6, shaded(paint, 130));
  for (const int seam : {-34, 0, 50})
    canvas.limb(at(seam, -44), at(seam, -18), kPixel / 2, kPixel / 2, shaded(paint, 150));
  for (const int handle : {-24, 12})
    canvas.limb(at(handle, -37), at(handle + 7, -37), kPixel, kPixel, shaded(paint, 120));
  draw_lights(canvas, middle, left > 0);
  for (const int axle : {-66, 68}) draw_wheel(canvas, at(axle, -kWheel), kCarWay * kPixel - before);
}

}  // namespace lm::host::source::scene
