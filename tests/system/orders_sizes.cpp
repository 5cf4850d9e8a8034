// The frame size, written without a configuration.
#include "tests/system/orders.h"

namespace orders {
namespace {

bool withTables(const Pair& pair) { return pair.hasEngine() && pair.hasTables(); }

std::string write(Pair& pair, Shape shape) {
  toBoth(pair, [shape](auto& state) {
    state.szImgX = shape.width;
    state.szImgY = shape.height;
  });
  return "szImgX = " + std::to_string(shape.width) + ", szImgY = " + std::to_string(shape.height);
}

// Width and height swapped, or another size.
std::string writeSize(Pair& pair, Dice& dice, std::string& call) {
  Shape shape = dice.chance(60) ? pair.sized() : anyShape(dice);
  if (dice.chance(50)) std::swap(shape.width, shape.height);
  call = write(pair, shape);
  return "";
}

// No side of a frame.
int badSide(Dice& dice, int side) { return dice.oneOf(std::array{0, -1, -side, -7, -1431655765}); }

// A call while a side is below 1.
std::string callWithBadSize(Pair& pair, Dice& dice, std::string& call) {
  const Shape before = pair.configured();
  Shape bad = pair.sized();
  const int kind = dice.below(3);
  if (kind != 0) bad.width = badSide(dice, bad.width);
  if (kind != 1) bad.height = badSide(dice, bad.height);
  const std::string sides = write(pair, bad);

  std::vector<Operation> operations = objectOperations();
  for (const Operation& operation : frameOperations()) operations.push_back(operation);
  std::erase_if(operations, [&](const Operation& operation) { return !operation.allowed(pair); });
  const Operation& operation = dice.chance(50) ? operations.front() : dice.oneOf(operations);
  std::string inner = operation.name;
  const std::string difference = operation.run(pair, dice, inner);
  call = sides + ": " + inner;
  // A first frame brings its own size.
  if (pair.configured() == bad) call += ", " + write(pair, before);
  return difference;
}

}  // namespace

std::vector<Operation> sizeOperations() {
  return {
      {"szImgX, szImgY", 8, withTables, writeSize},
      {"bad szImgX, szImgY", 25, withTables, callWithBadSize},
  };
}

}  // namespace orders
