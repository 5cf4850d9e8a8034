// Parameter entries and regions.
#include <algorithm>
#include <sstream>
#include <string>

#include "tests/plain/model.h"

namespace plain {

std::int32_t wrapAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

std::int32_t wrapSub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

std::int32_t wrapMul(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

std::int32_t truncated(double value) {
  // Written so that NaN also fails the test.
  if (!(value > -2147483649.0 && value < 2147483648.0)) return INT32_MIN;
  return static_cast<std::int32_t>(value);
}

namespace {

// Even-odd rule: a ray to the right of (x, y); an edge that passes through the point counts.
bool isInside(const std::vector<Vertex>& points, int x, int y) {
  bool in = false;
  for (std::size_t i = 0; i < points.size(); ++i) {
    const Vertex& to = points[i];
    const Vertex& from = points[i == 0 ? points.size() - 1 : i - 1];
    const float toY = static_cast<float>(to.y);
    const float fromY = static_cast<float>(from.y);
    const float pointY = static_cast<float>(y);
    const bool straddles = (toY > pointY && fromY <= pointY) || (toY <= pointY && fromY > pointY);
    if (!straddles) continue;
    const float rise = static_cast<float>(wrapSub(from.y, to.y));
    const float run = static_cast<float>(wrapSub(from.x, to.x));
    const float crossing = run * (pointY - toY) / rise + static_cast<float>(to.x);
    if (crossing >= static_cast<float>(x)) in = !in;
  }
  return in;
}

void rasterise(Region& region, int w, int h) {
  // A mask that the region already has is overwritten.
  const int n = wrapMul(w, h);
  region.mask.resize(std::max(region.mask.size(), n > 0 ? static_cast<std::size_t>(n) : 0));
  std::size_t pixel = 0;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x) region.mask[pixel++] = isInside(region.points, x, y) ? 1 : 0;
  }
}

}  // namespace

std::vector<Region> Model::regionsInPixels(const std::vector<RegionText>& texts, int w, int h,
                                           std::size_t fewest) {
  std::vector<Region> regions;
  for (const RegionText& text : texts) {
    Region region{text.name, {}, {}};
    if (text.points.size() >= fewest) {
      for (const auto& [x, y] : text.points) {
        region.points.push_back({truncated(static_cast<float>(w) * std::stof(x)),
                                 truncated(static_cast<float>(h) * std::stof(y))});
      }
    } else {
      mark(Branch::regionTooFewPoints);
    }
    regions.push_back(region);
  }
  return regions;
}

std::vector<bool> Model::setParam(const std::vector<std::string>& entries, const std::vector<Region>& include,
                                  const std::vector<Region>& exclude) {
  roiInclude = include;
  roiExclude = exclude;
  std::vector<bool> accepted;
  std::string key, value;  // an entry without a key or value reuses that of the previous entry
  for (const std::string& entry : entries) {
    std::istringstream tokens(entry);
    std::string token;
    if (tokens >> token) key = token;
    if (tokens >> token)
      value = token;
    else
      mark(Branch::valueRepeated);
    accepted.push_back(apply(key, value));
    mark(accepted.back() ? Branch::valueAccepted : Branch::valueRefused);
  }

  const int n = wrapMul(szImgX, szImgY);
  const std::size_t drawn = n > 0 ? static_cast<std::size_t>(n) : 0;
  roiMask.resize(std::max(roiMask.size(), drawn));
  std::fill_n(roiMask.begin(), drawn, Byte{0});
  for (Region& region : roiInclude) rasterise(region, szImgX, szImgY);
  for (Region& region : roiExclude) rasterise(region, szImgX, szImgY);
  for (std::size_t i = 0; i < drawn; ++i) {
    for (const Region& region : roiInclude) {
      if (region.mask[i] != 0) roiMask[i] = 1;
    }
    for (const Region& region : roiExclude) {
      if (region.mask[i] == 0) continue;
      markIf(roiMask[i] != 0, Branch::regionSubtracted);
      roiMask[i] = 0;
    }
  }
  return accepted;
}

void Model::parameterLine(const std::string& line) {
  std::istringstream text(line);
  std::string key;
  float value = -1.0F;
  text >> key >> value;
  if (key == "thrMatch") thrMatch = truncated(value);
  if (key == "thrHeuris") thrHeuris = truncated(value);
  if (key == "thrIllum") thrIllum = truncated(value);
  if (key == "minObjW") minObjW = value;
  if (key == "minObjH") minObjH = value;
  if (key == "thrCcPxl") thrCcPxl = thrCcPxl2 = truncated(value);
  if (key == "thrConnect") thrConnect = value;
}

bool Model::apply(const std::string& key, const std::string& value) {
  const auto whole = [&] { return std::stoi(value); };
  const auto wholeFrom = [&](std::int32_t& field, int least) {
    if (whole() < least) return false;
    field = whole();
    return true;
  };
  const auto share = [&](float& field) {
    const float number = std::stof(value);
    if (!(number > 0.0F && number <= 1.0F)) return false;
    field = number;
    return true;
  };
  const auto oneToTwenty = [&](std::int32_t& field) { return whole() <= 20 && wholeFrom(field, 1); };
  const auto flag = [&](bool& field) {
    field = whole() > 0;
    return true;
  };

  if (key == "frmW") return wholeFrom(szImgX, 1);
  if (key == "frmH") return wholeFrom(szImgY, 1);
  if (key == "frmChn") return wholeFrom(frmChn, 1);
  if (key == "sensitivity") return setSensitivity(whole());
  if (key == "lcAdap") return setAdaptation(whole());
  if (key == "minBoxW" || key == "MIN_BOUNDING_BOX_W") return share(minObjW);
  if (key == "minBoxH" || key == "MIN_BOUNDING_BOX_H") return share(minObjH);
  if (key == "lifeStatic") {
    // Only zero and negative values are accepted.
    if (whole() > 0) return false;
    lifeStatic = whole();
    lifeStaticFrm = truncated(lifeStatic * frmRate);
    return true;
  }
  if (key == "sensitivity_auto") {
    if (whole() != 1) return false;
    thrMatch = 7;
    thrHeuris = 10;
    return true;
  }
  if (key == "GHOST_SUPPRESSION") return flag(ghostSuppression);
  if (key == "ILLUMINATION_CHANGE") return flag(illumChange);
  if (key == "MIN_MATCH_NUM") return oneToTwenty(minMatchNum);
  if (key == "MIN_MATCH_DIST") return wholeFrom(thrMatch, 1);
  if (key == "THR_DIFF_HEURISTIC") return wholeFrom(thrHeuris, 0);
  if (key == "NUM_SEGMENT_LOCK") return oneToTwenty(numSegmentLock);
  if (key == "NUM_PERIOD_LOCK") return wholeFrom(numPeriodLock, 1);
  mark(Branch::keyUnknown);
  return false;
}

bool Model::setSensitivity(int value) {
  const auto thresholds = [&](int match, int heuristic) {
    thrMatch = match;
    thrHeuris = heuristic;
    return true;
  };
  switch (value) {
    case 1:
      return thresholds(20, 18);
    case 2:
      return thresholds(17, 15);
    case 3:
      return thresholds(13, 12);
    case 4:
      return thresholds(9, 11);
    case 5:
      return thresholds(7, 10);
    case -1:
      autoSensitivity = true;
      return thresholds(7, 10);
    default:
      thresholds(13, 12);
      mark(Branch::levelOutOfRange);
      return false;
  }
}

bool Model::setAdaptation(int value) {
  switch (value) {
    case 1:
      thrIllum = 20;
      return true;
    case 2:
      thrIllum = 15;
      return true;
    case 3:
      thrIllum = 10;
      return true;
    case 4:
      thrIllum = 5;
      return true;
    case 5:
      thrIllum = 2;
      return true;
    default:
      thrIllum = 10;
      mark(Branch::levelOutOfRange);
      return false;
  }
}

}  // namespace plain
