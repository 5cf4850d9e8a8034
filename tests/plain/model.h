// A plain second implementation of the motion engine, one pixel at a time, written from the documented rules
// without sharing code with the engine. Fields have the engine's names, so that tests can compare them.
// Clarity before speed; containers are empty where the engine's pointers are null.
#pragma once

#include <sys/time.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "tests/plain/branches.h"

namespace plain {

using Byte = std::uint8_t;
using Samples = std::array<std::array<Byte, 4>, 20>;

struct Vertex {
  std::int32_t x, y;
};

// A region in pixels; setParam fills `mask`.
struct Region {
  std::string name;
  std::vector<Vertex> points;
  std::vector<Byte> mask = {};
};

// A region as in the document: vertices as fractions of the frame size, as text.
struct RegionText {
  std::string name;
  std::vector<std::pair<std::string, std::string>> points;
};

struct Box {
  float x = 0, y = 0, width = 0, height = 0;
};

struct Component {
  std::uint32_t label;
  int count, first;
};

struct FourNeighbours {
  std::int32_t up = -1, right = -1, down = -1, left = -1;
};

class Model {
 public:
  // `level`: instruction-set level whose region pruning the model follows.
  explicit Model(int level) : level_(level) {}

  // ---- the host's calls
  std::vector<Region> regionsInPixels(const std::vector<RegionText>& texts, int w, int h, std::size_t fewest);
  std::vector<bool> setParam(const std::vector<std::string>& entries, const std::vector<Region>& include,
                             const std::vector<Region>& exclude);
  // One frame as processed by the detector: returns the result text, empty without boxes, and stores `boxes`.
  std::string frameProc(const Byte* frame, int w, int h, int channels, const std::string& timestamp);

  // ---- the engine's single operations. Without the data they need, they return false, 0 or nothing.
  bool initialization(int w, int h);
  bool initBuffer();
  void destroyBuffer();
  bool setTimestamp(const std::string& text);
  bool learnBg(const Byte* frame, int w, int h, int channels);  // null: no frame
  int preprocess(const Byte* frame, int w, int h, int channels);
  void estFrameRate();
  int updateLock();
  bool seed();
  void difference();
  bool classify();
  bool update();
  std::vector<Box> objects(std::vector<Byte>& mask);
  std::vector<Component> label(std::vector<std::uint32_t>& labels, Byte value);
  // `marked`: bytes that held the marker before the call are relabelled as well.
  int dilate(std::vector<Byte>& mask, Byte set, Byte relabel, int passes, bool marked);
  int erode(std::vector<Byte>& mask, Byte set, Byte cleared, int passes, bool marked);
  void parameterLine(const std::string& line);  // of the parameter file
  std::string resultText(const std::string& timestamp, const std::vector<Box>& list);

  // ---- state, named as in the engine
  bool illumChange = true, ghostSuppression = true, autoSensitivity = false, skipFrame = false;
  std::int32_t frmChn = 0, diffChn = 0, numPixel = 0, szImgX = 0, szImgY = 0, numNbr = 25;
  std::int32_t thrMatch = 20, minMatchNum = 2, thrIllum = 5, thrHeuris = 10;
  std::int32_t lifeStaticFrm = 160, lifeStatic = 3;
  std::int32_t lockSegStart = 0, lockSegEnd = 3, numSegmentLock = 4, numPeriodLock = 600;
  float illumRatio = 0.0F, minObjW = 0.05F, minObjH = 0.05F, thrConnect = 10.0F;
  std::int32_t minObjWPxl = 0, minObjHPxl = 0, thrCcPxl = 25, thrCcPxl2 = 25, holdCcPxl = 0;
  double frmRate = 30.0;
  std::int64_t curTimestamp = -1, prevTimestamp = -1, elapsedUs = 0;
  timeval prevTime{}, curTime{};
  std::int32_t usPerSec = 1000000, frmCount = 0;

  std::vector<Byte> fgMask, prevFgMask, bgImg, curFrame, prevFrame, illumDiff, rdDiff, absorbMask, roiMask;
  std::vector<std::int32_t> updTimer;
  std::vector<std::uint32_t> minDist, labelMap, nbrCursor, sampleCursor, refreshCount;
  std::vector<std::vector<std::uint32_t>> labelRows;
  std::vector<float> fgLife;
  std::vector<Samples> bgModel;
  std::vector<std::vector<std::int32_t>> nbrIdx;
  std::vector<FourNeighbours> nbr4Idx;
  std::vector<Vertex> nbrOffset;
  std::vector<Region> roiInclude, roiExclude;
  std::vector<Box> boxes;

  // ---- external inputs
  std::int32_t thresholdX2 = 20, thresholdX3 = 30;  // the exported THRESH_SAME_PIXEL_x2 and _x3
  timeval now{};                                    // the wall clock

  BranchCounts taken{};

 private:
  // settings.cpp
  bool apply(const std::string& key, const std::string& value);
  bool setSensitivity(int value);
  bool setAdaptation(int value);
  // frame.cpp
  bool canLearn(int pixels) const;
  void rateFromTimestamps();
  void rateFromClock();
  // buffers.cpp
  bool isSized() const { return numPixel >= 1 && bgModel.size() == static_cast<std::size_t>(numPixel); }
  bool holdsFrames() const;
  void makePlanes(std::size_t n);
  void releasePlanes();
  void findNeighbours(int x, int y);
  // background.cpp
  bool canClassify() const;
  bool canUpdate() const;
  void differenceInTurn(std::size_t n);
  void differenceOf(const std::vector<Byte>& a, const std::vector<Byte>& b, std::vector<Byte>& out,
                    int channel) const;
  bool absorbs(std::size_t i);
  bool matchesModel(std::size_t i);
  int matchDistance(std::size_t i, const std::array<Byte, 4>& sample);
  void accountLife(std::size_t i);
  bool followIllumination(std::size_t i);
  void refresh(std::size_t i);
  void writeSample(std::size_t i);
  std::size_t nextNeighbour(std::size_t i);
  bool inside(std::size_t i) const { return i < roiMask.size() && roiMask[i] != 0; }
  // objects.cpp
  bool canExtract() const;
  bool hasSides() const { return szImgX >= 1 && szImgY >= 1; }
  Vertex firstPixel(const Component& component) const;
  void prune(std::vector<Byte>& mask);
  void fillLabels(const std::vector<Byte>& mask);
  Box boxOf(const Component& component);
  // morphology.cpp
  bool anyNeighbour(std::size_t pixel, const std::function<bool(std::size_t)>& test) const;
  // joining.cpp
  float gap(const Box& a, const Box& b);
  bool near(const Box& a, const Box& b);
  bool overlap(const Box& a, const Box& b);
  bool largeEnough(const Box& box);
  bool joinOnce(std::vector<Box>& list, const std::function<bool(const Box&, const Box&)>& belong);
  void adapt(bool foundBoxes, const std::vector<Vertex>& small);
  void adaptToSmall(const std::vector<Vertex>& small);
  // result.cpp
  std::string number(float value);

  void mark(Branch branch) { ++taken[static_cast<std::size_t>(branch)]; }
  void markIf(bool condition, Branch branch) {
    if (condition) mark(branch);
  }

  int level_;
  std::int32_t planePixels_ = 0;  // number of pixels for which the planes were made
};

// The engine's 32-bit arithmetic: sums, products and differences wrap; what does not fit an int becomes
// INT_MIN.
std::int32_t wrapAdd(std::int32_t a, std::int32_t b);
std::int32_t wrapSub(std::int32_t a, std::int32_t b);
std::int32_t wrapMul(std::int32_t a, std::int32_t b);
std::int32_t truncated(double value);

}  // namespace plain
