// Writes to the settings and to the scalar state.
#include "tests/system/orders.h"

namespace orders {
namespace {

bool withEngine(const Pair& pair) { return pair.hasEngine(); }

// A field of the same name on both sides, and the numbers that are written to it.
struct Field {
  const char* name;
  int low, high;
  void (*write)(Pair&, int);
};

#define FIELD(name, low, high)                                                                \
  {                                                                                           \
#name, low, high, [](Pair& pair, int value) {                                               \
      toBoth(pair, [value](auto& state) { state.name = static_cast<decltype(state.name)>(value); }); \
    } \
  }
// A field that is a real number; written in hundredths.
#define HUNDREDTHS(name, low, high)                                                                    \
  {                                                                                                    \
#name " * 100", low, high, [](Pair& pair, int value) {                                               \
      toBoth(pair, [value](auto& state) { state.name = static_cast<decltype(state.name)>(value) / 100; }); \
    } \
  }

constexpr Field fields[] = {
    FIELD(illumChange, 0, 1),
    FIELD(ghostSuppression, 0, 1),
    FIELD(autoSensitivity, 0, 1),
    FIELD(skipFrame, 0, 1),
    FIELD(frmChn, 1, 5),
    FIELD(diffChn, -2, 3),
    FIELD(thrMatch, -1, 60),
    FIELD(minMatchNum, 1, 20),
    FIELD(minMatchNum, 1, 3),
    FIELD(thrIllum, -1, 40),
    FIELD(thrHeuris, -1, 40),
    FIELD(thrIllum, 0, 260),
    FIELD(thrHeuris, 0, 260),
    FIELD(lifeStaticFrm, -2, 12),
    FIELD(lifeStatic, 0, 3),
    FIELD(lockSegStart, -1, 21),
    FIELD(lockSegEnd, -1, 21),
    FIELD(numSegmentLock, 1, 20),
    FIELD(numPeriodLock, 0, 7),
    HUNDREDTHS(illumRatio, 0, 40),
    HUNDREDTHS(minObjW, 0, 30),
    HUNDREDTHS(minObjH, 0, 30),
    FIELD(minObjWPxl, 0, 12),
    FIELD(minObjHPxl, 0, 12),
    FIELD(thrCcPxl, 1, 40),
    FIELD(thrCcPxl2, 1, 40),
    FIELD(holdCcPxl, 0, 4),
    HUNDREDTHS(thrConnect, 0, 900),
    HUNDREDTHS(frmRate, 0, 4500),
    FIELD(curTimestamp, -1, 5000),
    FIELD(prevTimestamp, -1, 5000),
    FIELD(usPerSec, 1000, 1000000),
    FIELD(frmCount, 0, 0),
    FIELD(frmCount, 1, 9),
};

#undef FIELD
#undef HUNDREDTHS

std::string writeField(Pair& pair, Dice& dice, std::string& call) {
  const Field& field = fields[dice.below(static_cast<int>(std::size(fields)))];
  const int value = dice.between(field.low, field.high);
  call = std::string(field.name) + " = " + std::to_string(value);
  field.write(pair, value);
  return "";
}

}  // namespace

std::vector<Operation> fieldOperations() {
  return {
      {"field", 60, withEngine, writeField},
  };
}

}  // namespace orders
