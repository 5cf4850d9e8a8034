// The motion engine: everything that the detector knows between frames.
//
// Life of an engine:
//   constructed   settings at their defaults, no buffers
//   configured    setParam has written settings, copied the regions and built roiMask
//   sized         the first accepted frame sized all buffers and seeded the model (learnBg_ncv)
//   running       each frame: setTimestamp, learnBg_ncv -> fgMask, genFgObj_ncv -> boxes
//   released      destoryBuffer freed the buffers; the destructor ends the object
//
// One thread at a time. W is szImgX, H is szImgY, Ch is frmChn; a pixel's index is y * W + x. Products of
// sizes are 32-bit and wrap. "Plane" below means an array of W * H elements made with posix_memalign at
// 32-byte alignment, zero-filled, freed with free(), null until made and after a failed allocation; an
// operation that needs a missing plane returns false, 0 or an empty list. Array and container
// allocations throw std::bad_alloc or std::length_error.
//
// Every operation reads its input from the fields below, and a host may write them between calls. What it
// puts in the place of a plane has numPixel elements (labelRows: H rows of W); entries of the neighbour
// tables are -1 or the index of a pixel, cursors are below the number of entries that they count.
#pragma once

#include <sys/time.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "config/polygon.h"
#include "objects/box.h"
#include "simd/samples.h"

struct ccObj;  // objects/component.h
namespace lm {
struct EngineState;  // engine/engine_state.h
}

// Remembered samples of one pixel: slot s holds the pixel's bytes in the frame's own order; bytes beyond Ch
// are never written.
struct BgModel {
  static constexpr int numSamples = lm::samplesPerPixel;  // slots
  std::uint8_t samples[numSamples][4];                    // slot, byte
};

// Indices of a pixel's four direct neighbours, -1 outside the frame.
struct int128_t {
  std::int32_t up, right, down, left;  // pixel indices
  std::uint8_t zero[16];               // 0
};

// Upper bands of the life counter's frame difference (see fgLife); read at every use, a host may change them.
extern std::int32_t THRESH_SAME_PIXEL_x3;  // 30
extern std::int32_t THRESH_SAME_PIXEL_x2;  // 20
extern std::int32_t g_seed;                // 0; neither read nor written by the library

// The engine; see its life at the top of this file.
class kAMBLE {
 public:
  kAMBLE();   // defaults as listed with the fields; allocates nothing
  ~kAMBLE();  // destoryBuffer, then the masks of roiInclude and roiExclude (delete[])
  kAMBLE(const kAMBLE&) = delete;
  kAMBLE& operator=(const kAMBLE&) = delete;

  // ---- configuration (config/) ------------------------------------------------------------------

  // Copies the regions, applies the "key value" entries in order, then builds roiMask: inside any region of
  // `include` and no region of `exclude`. Returns one flag per entry: recognised and in range. Throws
  // std::invalid_argument or std::out_of_range ("stoi", "stof") for a value that holds no number or one out
  // of range; earlier entries stay applied and roiMask is not rebuilt then. (set_param.cpp, keys in
  // param_table.h)
  std::vector<bool> setParam(std::vector<std::string>& paramList, std::vector<polygon>& include,
                             std::vector<polygon>& exclude);

  // Reads "key value" lines from a text file into thrMatch, thrHeuris, thrIllum, minObjW, minObjH, thrCcPxl
  // (and thrCcPxl2) and thrConnect, without range tests. Unknown keys are skipped, a file that cannot be
  // opened leaves all as it is, a line of more than 4095 characters ends the reading. (param_file.cpp)
  void ParserParams(const char* path);

  // ---- life (engine/state.cpp, buffers.cpp) -----------------------------------------------------

  // Stores the frame size, writes it to standard error, makes the buffers and seeds the model from curFrame.
  // True when the model is ready.
  bool initialization_ncv(int w, int h);

  // Makes every missing plane and the neighbour tables; derives thrConnect, minObjWPxl, minObjHPxl. True when
  // all planes that later steps need exist. Called a second time it keeps existing planes but replaces bgImg
  // and every neighbour array without freeing them, and appends to nbrOffset again: release them first.
  bool initBuffer_ncv();

  // Releases all planes, the model and the neighbour arrays. The table that labelRows points to is kept.
  void destoryBuffer();

  // ---- one frame (engine/pipeline.cpp, frame_rate.cpp) ------------------------------------------

  // Parses the frame's time in milliseconds into curTimestamp; a negative one is stored as -1 and gives
  // false. Throws std::logic_error for null, std::invalid_argument or std::out_of_range ("stoll").
  bool setTimestamp(const char* timestamp);

  // Learns one frame of width x height pixels of `channels` bytes: all frames have the size of the first.
  // True when it was accepted; fgMask then holds its foreground, from the second accepted frame on. False
  // when the channel count is none of 1, 3, 4 (a line goes to standard error), when an allocation fails, or
  // when the frame needs more room than the engine was sized for.
  bool learnBg_ncv(const std::uint8_t* frame, int width, int height, int channels);

  // Copies the frame into curFrame and stores `channels`, then judges the count: returns it when 1, 3 or 4,
  // else 0 after a line on standard error.
  int preprocess_ncv(const std::uint8_t* frame, int width, int height, int channels);

  // Updates frmRate from curTimestamp, or from the wall clock when that is not positive, and with it
  // lifeStaticFrm.
  void estFrameRate();

  // ---- model (engine/model_*.cpp, difference.cpp, lock.cpp) -------------------------------------

  bool initModel_ncv();    // seeds bgModel and bgImg from curFrame; true
  bool recogFg_ncv();      // classifies curFrame: fgMask, minDist, fgLife, absorbMask; true
  bool updateModel_ncv();  // replaces samples, refreshes bgImg, sets illumRatio; after recogFg_ncv; true
  bool heuristic_ncv();    // makes rdDiff, illumDiff and prevFgMask; returns skipFrame, that is false
  int updateLock();        // moves the locked segment every numPeriodLock frames; returns lockSegEnd

  // ---- objects (objects/) -----------------------------------------------------------------------

  // Boxes of what moves, as fractions of the frame, from a private copy of fgMask (numPixel bytes, 255
  // foreground, 0 background, 32-byte aligned), which is changed. 1 is foreground as well; other values
  // neither are nor erode any. Adapts thrCcPxl2 when autoSensitivity is on. A side below 1 gives boxes
  // without that side and a line on standard error for each; sides with more pixels than numPixel, or than
  // the label rows that the engine made, give none. (extract.cpp)
  std::vector<boxRect> genFgObj_ncv(unsigned char* mask);

  // Labels the regions of `value` in place, 2, 3, ... (never `value`), and lists them in raster order of
  // their first pixels. A region is what nbr4Idx connects. `labels`: numPixel words. Other pixels keep their
  // values. (components.cpp)
  std::vector<ccObj> connectedComponent(std::uint32_t* labels, std::uint8_t value);

  // Leaves the shape of the `set` regions as it is (see docs/behaviour.md), then turns `set` into `relabel`.
  // Returns 1. (morphology_list.cpp)
  int dilate_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t relabel, int passes);
  // Peels `passes` layers off every region of `set` where it borders `cleared` in nbr4Idx. Returns 1.
  // (morphology_list.cpp)
  int erode_ncv_fast(std::uint8_t* mask, std::uint8_t set, std::uint8_t cleared, int passes);
  // As dilate_ncv_fast, except that bytes that held set - 1 become `set` too. (morphology_marker.cpp)
  int dilate_ncv(std::uint8_t* mask, std::uint8_t set, std::uint8_t relabel, int passes);
  // As erode_ncv_fast, except that bytes that held the marker (cleared + 1, or + 2 when that is `set`) become
  // `cleared` too. (morphology_marker.cpp)
  int erode_ncv(std::uint8_t* mask, std::uint8_t set, std::uint8_t cleared, int passes);

  // ==== settings and scalar state ================================================================

  bool illumChange = true;           // illumination-change handling on
  bool ghostSuppression = true;      // foreground that stays still is absorbed
  bool skipFrame = false;            // skip classification and update of this frame; cleared each frame
  std::int32_t frmChn = 0;           // bytes per pixel of the last frame seen
  std::int32_t diffChn = 0;          // channel of the next difference images; 0 is compared where not 0 to 2
  std::int32_t numPixel = 0;         // W * H of the first frame
  std::int32_t szImgX = 0;           // frame width, pixels
  std::int32_t szImgY = 0;           // frame height, pixels
  std::int32_t numNbr = 25;          // entries in each pixel's neighbour array (5 x 5)
  std::int32_t thrMatch = 20;        // per-channel match radius
  std::int32_t minMatchNum = 2;      // samples that must match for background, 1 to 20
  std::int32_t thrIllum = 5;         // illumination difference above which a pixel counts as changed
  std::int32_t thrHeuris = 10;       // frame difference up to which a pixel counts as unchanged
  std::int32_t lifeStaticFrm = 160;  // frames after which still foreground is absorbed
  std::int32_t lifeStatic = 3;       // the same in seconds
  std::int32_t lockSegStart = 0;     // first sample slot of the locked segment
  std::int32_t lockSegEnd = 3;       // last sample slot of the locked segment
  std::int32_t numSegmentLock = 4;   // width of the segment, slots
  std::int32_t numPeriodLock = 600;  // frames between its moves
  float illumRatio = 0.0F;           // share of examined background pixels whose light changed, last update
  float minObjW = 0.05F;             // minimum box width, fraction of W
  float minObjH = 0.05F;             // minimum box height, fraction of H
  std::int32_t minObjWPxl = 0;       // minimum box width, pixels
  std::int32_t minObjHPxl = 0;       // minimum box height, pixels
  std::int32_t thrCcPxl = 25;        // configured minimum pixel count of a component
  std::int32_t thrCcPxl2 = 25;       // working minimum, adapted by genFgObj_ncv
  std::int32_t holdCcPxl = 0;        // frames left before thrCcPxl2 may rise again
  bool autoSensitivity = false;      // adapt thrCcPxl2

  // ==== planes and lists, one element per pixel unless noted =======================

  std::uint8_t* fgMask = nullptr;      // plane; 255 foreground, 0 background; 0 outside roiMask
  std::uint8_t* prevFgMask = nullptr;  // plane; fgMask of the frame before, 1 before the first classification
  std::uint8_t* bgImg = nullptr;       // W * H * Ch; background image
  std::uint8_t* auxMask = nullptr;     // plane; not read
  std::uint8_t* curFrame = nullptr;    // at least W * H * Ch; copy of the frame being processed
  std::uint8_t* prevFrame = nullptr;   // W * H * Ch; copy of the frame before
  std::uint8_t* illumDiff = nullptr;   // W * H * Ch, W * H used; |bgImg - curFrame| on one channel
  std::uint8_t* absorbMask = nullptr;  // plane; 255 where the next update writes the pixel into its model
  std::uint8_t* roiMask = nullptr;     // plane; 1 inside the usable region, else 0; made by setParam
  std::uint8_t* rdDiff = nullptr;      // plane; |prevFrame - curFrame| on one channel
  std::int32_t* updTimer = nullptr;    // plane; frames to wait before the pixel's next refresh
  std::uint32_t* minDist = nullptr;   // plane, made as 255; smallest match distance, 999 when nothing matched
  std::uint32_t* auxMap = nullptr;    // plane; not read
  float* fgLife = nullptr;            // new[]; life of foreground that stays still, frames
  std::vector<BgModel> bgModel;       // remembered samples
  std::vector<int*> nbrIdx;           // new[] of numNbr each: the 5 x 5 neighbourhood; -1: the pixel itself
  std::vector<int128_t> nbr4Idx;      // direct neighbours, which erosion and labelling follow
  std::uint32_t* labelMap = nullptr;  // plane; labels of the last frame's components (objects/extract.cpp)
  std::uint32_t** labelRows = nullptr;    // H rows of W labels, copied from labelMap; table: labelTable
  std::vector<pnt> nbrOffset;             // 25 offsets (dx, dy), dx outer
  std::uint32_t* nbrCursor = nullptr;     // plane; next entry of nbrIdx to use
  std::uint32_t* sampleCursor = nullptr;  // plane; next sample slot to overwrite, 0 to 19
  std::uint32_t* refreshCount = nullptr;  // plane; refresh sub-sampling counter, 0 to 15

  // ==== the rest =================================================================================

  float thrConnect = 10.0F;  // largest gap between boxes that are joined, pixels; longer side / 32 once sized
  std::vector<polygon> roiInclude;  // regions of interest; own their masks
  std::vector<polygon> roiExclude;  // exclusion regions; own their masks
  double frmRate = 30.0;            // frames per second
  std::int64_t curTimestamp = -1;   // time of the current frame, ms; -1 when unknown
  std::int64_t prevTimestamp = -1;  // time of the last frame used for the rate, ms
  timeval prevTime{};               // wall clock at the previous frame
  timeval curTime{};                // wall clock at the current frame
  std::int64_t elapsedUs = 0;       // microseconds between the two
  std::int32_t usPerSec = 1000000;  // microseconds in a second
  std::vector<int> morphList;       // scratch of the list-based morphology; room for a frame
  std::int32_t frmCount = 0;        // frames accepted; 0 means not yet sized

  std::unique_ptr<lm::EngineState> state;  // the library's own; made when it is first needed
};
