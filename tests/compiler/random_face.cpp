#include "random_face.h"

namespace tarnwick::tests {

namespace {

constexpr int Shapes = 8;

/// Shapes that lift some of the mesh's vertices; those of lids one side alone.
std::string ShapeFile(const RandomFaceRequest& request) {
  std::string text = request.Skeleton + "skeleton\n";
  for (int shape = 0; shape <= Shapes; ++shape) text += "time " + Number(shape) + "\n";
  text += "end\nvertexanimation\n";
  for (int shape = 0; shape <= Shapes; ++shape) {
    text += "time " + Number(shape) + "\n";
    for (size_t i = 0; i < request.Vertices.size(); ++i) {
      const auto& p = request.Vertices[i].Place;
      const bool moves = (i + static_cast<size_t>(shape)) % 3 == 0;
      if (shape > 0 && !moves) continue;
      const double by = shape == 0 ? 0 : 0.1 * shape + 0.01 * static_cast<double>(i % 7);
      text += std::to_string(i) + Numbers(p[0], p[1] + by, p[2] - by / 2, p[3], p[4], p[5]) + "\n";
    }
  }
  return text + "end\n";
}

std::string FlexFile(Dice& dice) {
  std::string text = dice.Any({"", "", "  localvar wide1L wide1R\n"});
  text += "  flexfile \"head.vta\" {\n    defaultflex frame 0\n    flex smile frame 1\n    flex frown frame 2" +
          dice.Any({"", " decay 4", " decay 0.5"}) + "\n    flex \"so-late\" frame 3\n";
  for (int pair = dice.From(1, 3); pair > 0; --pair) {
    text += "    flexpair wide" + Number(pair) + " " + Number(dice.Real(0.01, 20)) + " frame " +
            Number(dice.From(2, 5)) + "\n";
  }
  if (dice.Chance(50)) text += "    flex stepped frame 4 position 0.5\n    flex stepped frame 5 position 1\n";
  return text + "  }\n";
}

std::string Eyes(Dice& dice, const std::string& bone) {
  std::string text;
  for (const std::string side : {"right", "left"}) {
    const bool right = side == "right";
    text += "  eyeball " + side + "eye " + bone + Numbers(right ? -1.5 : 1.5, -3.25, dice.Real(50, 70)) +
            (right ? " Eye_R" : " eye_l") + Numbers(dice.Real(0.5, 2), right ? 4 : -4) + " iris" +
            Numbers(dice.Real(0.3, 1)) + "\n";
    for (const std::string lid : {"upper_", "lower_"}) {
      if (dice.Chance(20)) continue;
      const std::string low = lid == "upper_" ? " lowerer 6 -0.3" : " lowerer 6 -0.4";
      text += "  eyelid " + lid + side + " \"head.vta\"" + low + " neutral 0 0.12 raiser 7 0.37 split " +
              (right ? "0.1" : "-0.1") + " eyeball " + side + "eye\n";
    }
  }
  return text;
}

}  // namespace

std::string MakeRandomFace(const RandomFaceRequest& request, std::map<std::string, std::string>& files) {
  files["head.vta"] = ShapeFile(request);
  Dice& dice = request.Roll;
  const std::string shapes = FlexFile(dice);
  const std::string eyes = request.WithEyes ? Eyes(dice, request.Bone) : "";
  std::string text = "$model face \"head.smd\" {\n" + (dice.Chance(50) ? shapes + eyes : eyes + shapes);
  text += "  mouth 0 \"smile\" " + request.Bone +
          " 0 1 0\n"
          "  flexcontroller mouth smile range 0 1\n  flexcontroller brow range -1 1 right_frown left_frown\n"
          "  flexcontroller eyes range -30 30 eyes_updown\n"
          "  localvar both\n  %both = smile * 0.5 + 1\n  %smile = (%both - 0.5) / 2\n"
          "  %frown = left_frown - right_frown * 2\n  \"%so-late\" = -smile\n";
  if (dice.Chance(50)) text += "  %both = min(max(smile, 0.25), 1 - eyes_updown / 30)\n";
  return text + "}\n";
}

}  // namespace tarnwick::tests
