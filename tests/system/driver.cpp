#include "tests/system/driver.h"

#include <cstdlib>
#include <sstream>

#include "engine/kamble.h"
#include "plugin/detector.h"
#include "plugin/entry_points.h"
#include "simd/cpu_level.h"
#include "tests/system/comparison.h"
#include "tests/system/scripted_clock.h"

namespace {

// Hosts may change the exported bands: every sequence starts and ends with the library's defaults.
struct ExportedBands {
  std::int32_t x2 = THRESH_SAME_PIXEL_x2, x3 = THRESH_SAME_PIXEL_x3;
  ExportedBands() = default;
  ExportedBands(const ExportedBands&) = delete;
  ExportedBands& operator=(const ExportedBands&) = delete;
  ~ExportedBands() {
    THRESH_SAME_PIXEL_x2 = x2;
    THRESH_SAME_PIXEL_x3 = x3;
  }
};

std::vector<std::string> entriesOf(const Sequence& sequence, int channels) {
  std::vector<std::string> entries = {"frmW " + std::to_string(sequence.width),
                                      "frmH " + std::to_string(sequence.height),
                                      "frmChn " + std::to_string(channels)};
  entries.insert(entries.end(), sequence.entries.begin(), sequence.entries.end());
  return entries;
}

std::vector<polygon> polygonsOf(const std::vector<plain::Region>& regions) {
  std::vector<polygon> polygons;
  for (const plain::Region& region : regions) {
    polygon copy;
    copy.name = region.name;
    for (const plain::Vertex& vertex : region.points) copy.points.push_back({vertex.x, vertex.y});
    polygons.push_back(copy);
  }
  return polygons;
}

// The model, configured for a sequence.
class Configured {
 public:
  explicit Configured(const Sequence& sequence, int channels)
      : model(GetCpuInstructionSet()),
        entries(entriesOf(sequence, channels)),
        include(model.regionsInPixels(sequence.include, sequence.width, sequence.height, 3)),
        exclude(model.regionsInPixels(sequence.exclude, sequence.width, sequence.height, 0)),
        accepted(model.setParam(entries, include, exclude)) {}

  plain::Model model;
  std::vector<std::string> entries;
  std::vector<plain::Region> include, exclude;
  std::vector<bool> accepted;
};

// Empty if both accept or both refuse the configuration.
std::string configure(lightMotion& detector, const Sequence& sequence, int channels, Configured& plain) {
  if (sequence.configuredBy == ConfiguredBy::document) {
    return detector.init(documentOf(sequence, channels).c_str()) ? "" : "the document was refused";
  }
  detector.engine = new kAMBLE;
  detector.frmW = sequence.width;
  detector.frmH = sequence.height;
  std::vector<polygon> include = polygonsOf(plain.include), exclude = polygonsOf(plain.exclude);
  return detector.engine->setParam(plain.entries, include, exclude) == plain.accepted
             ? ""
             : "accepted entries differ";
}

std::string modelFrame(const Sequence& sequence, plain::Model& model, const Frame& frame) {
  return model.frameProc(frame.pixels.data(), sequence.width, sequence.height, frame.channels,
                         frame.timestamp);
}

// The neighbour tables use rand(): both sides start from the same state, and the next number shows whether
// they called it equally often.
template <class Step>
int drawnBy(int frame, const Step& step) {
  std::srand(static_cast<unsigned>(frame) + 1);
  step();
  return std::rand();
}

std::string report(const Sequence& sequence, int frame, const std::string& difference) {
  if (difference.empty()) return "";
  return sequence.name + " (" + std::to_string(sequence.width) + "x" + std::to_string(sequence.height) +
         "), frame " + std::to_string(frame) + ", " + difference;
}

void prepare(const Sequence& sequence, int k, kAMBLE* engine, plain::Model& model) {
  if (sequence.clock) setScriptedTime(sequence.clock(k));
  model.now = scriptedTime();
  if (sequence.before) sequence.before(k, engine, model);
}

std::string compareFrame(const Sequence& sequence, int k, const Frame& frame, lightMotion& detector,
                         plain::Model& model) {
  prepare(sequence, k, detector.engine, model);
  int length = -1;
  std::string text;
  detector.frmChn = frame.channels;
  const int engineDraw =
      drawnBy(k, [&] { detector.frameProc(frame.pixels.data(), frame.timestamp.c_str(), &length); });
  const int modelDraw = drawnBy(k, [&] { text = modelFrame(sequence, model, frame); });

  const std::string difference = firstDifference(detector, model);
  if (!difference.empty()) return difference;
  if (engineDraw != modelDraw) return "rand() was called a different number of times";
  if (detector.resText != text) return "result: engine " + detector.resText + ", model " + text;
  if (length != static_cast<int>(text.size())) return "result length: engine " + std::to_string(length);
  return "";
}

}  // namespace

std::string documentOf(const Sequence& sequence, int channels) {
  std::ostringstream text;
  text << '{';
  for (const std::string& entry : entriesOf(sequence, channels)) {
    const std::size_t blank = entry.find(' ');
    text << '"' << entry.substr(0, blank) << "\":\"" << entry.substr(blank + 1) << "\",";
  }
  const auto regions = [&](const char* key, const std::vector<plain::RegionText>& list) {
    text << '"' << key << "\":[";
    for (std::size_t i = 0; i < list.size(); ++i) {
      text << (i == 0 ? "" : ",") << "{\"name\":\"" << list[i].name << "\",\"points\":[";
      for (std::size_t p = 0; p < list[i].points.size(); ++p) {
        const auto& [x, y] = list[i].points[p];
        text << (p == 0 ? "" : ",") << "{\"x\":\"" << x << "\",\"y\":\"" << y << "\"}";
      }
      text << "]}";
    }
    text << ']';
  };
  regions("roi", sequence.include);
  text << ',';
  regions("ror", sequence.exclude);
  text << '}';
  return text.str();
}

std::string compareOver(const Sequence& sequence, const std::function<void(const lightMotion&)>& after) {
  const ExportedBands bands;
  Frame frame = sequence.frame(0);
  Configured plain(sequence, frame.channels);
  lightMotion detector;
  std::string difference = configure(detector, sequence, frame.channels, plain);
  for (int k = 0; difference.empty() && k < sequence.frames; ++k) {
    if (k > 0) frame = sequence.frame(k);
    difference = report(sequence, k, compareFrame(sequence, k, frame, detector, plain.model));
    after(detector);
  }
  return difference;
}

std::string compareTextsOver(const Sequence& sequence) {
  Frame frame = sequence.frame(0);
  Configured plain(sequence, frame.channels);
  if (!initialization(documentOf(sequence, frame.channels).c_str())) return "the document was refused";
  std::string difference;
  for (int k = 0; difference.empty() && k < sequence.frames; ++k) {
    if (k > 0) frame = sequence.frame(k);
    prepare(sequence, k, nullptr, plain.model);
    std::string expected;
    int length = -1;
    drawnBy(k, [&] { expected = modelFrame(sequence, plain.model, frame); });
    drawnBy(k, [&] { frameProc(frame.pixels.data(), frame.timestamp.c_str(), &length); });
    std::string text(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
    getRes(text.data());
    if (text != expected)
      difference = report(sequence, k, "result: entry points " + text + ", model " + expected);
  }
  terminate();
  return difference;
}

plain::BranchCounts branchesTaken(const Sequence& sequence) {
  Frame frame = sequence.frame(0);
  Configured plain(sequence, frame.channels);
  for (int k = 0; k < sequence.frames; ++k) {
    if (k > 0) frame = sequence.frame(k);
    prepare(sequence, k, nullptr, plain.model);
    modelFrame(sequence, plain.model, frame);
  }
  return plain.model.taken;
}
