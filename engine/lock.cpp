// The locked segment of sample slots: a band of which the sample cursors skip one slot (nextSlot in rules.h),
// so that some of every pixel's older samples survive for a while.
#include "engine/kamble.h"
#include "engine/rules.h"

int kAMBLE::updateLock() {
  if (numPeriodLock < 1 || frmCount % numPeriodLock != 0) return lockSegEnd;
  const lm::LockSegment moved = lm::moveLock(lockSegStart, numSegmentLock, BgModel::numSamples);
  lockSegStart = moved.first;
  lockSegEnd = moved.last;
  return lockSegEnd;
}
