// Tells places that something has left from things that stand still.
//
// Both are foreground that does not move. When something that was learned as background leaves, the picture
// shows the ground again and the learned background still shows the thing: a "ghost". When something stops,
// it is the other way round. What decides is where the edges are along the outline of the foreground: in the
// picture, or in the background. (Comparing the edges of the foreground with those of the picture: F. Yin,
// D. Makris, S. A. Velastin, "Real-time ghost removal for foreground segmentation methods", 8th International
// Workshop on Visual Surveillance, 2008.)
//
// Light and shadow that stay have edges in the picture too, but they keep the texture of the ground: they are
// taken back as well.
#pragma once

#include <chrono>
#include <functional>
#include <opencv2/core.hpp>
#include <vector>

namespace lm::host::detector {

// Intersection over union.
double overlap(const cv::Rect& a, const cv::Rect& b);

// Where the edges along the outline of `mask` are: from -1, all in the background, to 1, all in the picture.
// 0 if there are none. Pictures of the same size and type, 8 bits per channel; `mask`: one byte per pixel,
// not 0 inside.
double edges_in_picture(const cv::Mat& picture, const cv::Mat& background, const cv::Mat& mask);

// How much the texture inside `mask` is that of the background: from 1, the same, perhaps in another light,
// to 0, another one or none.
double texture_kept(const cv::Mat& picture, const cv::Mat& background, const cv::Mat& mask);

// A part of the frame, for lightmotion_relearn.
struct GhostPart {
  cv::Rect area;
  cv::Mat mask;  // of the area, 255 inside; empty if there is none
};

// What the detector has made of an area of a frame. Both of its size, `background` of the frame's type.
struct LearnedPictures {
  cv::Mat foreground;
  cv::Mat background;
};

class Ghosts {
 public:
  using Learned = std::function<LearnedPictures(const cv::Rect& area)>;

  // Looks at a frame and its boxes; returns the parts that something has left. `learned` is called when a box
  // stands still and is not decided, a few times in its life.
  std::vector<GhostPart> look(const cv::Mat& picture, std::chrono::microseconds time,
                              const std::vector<cv::Rect>& boxes, const Learned& learned);

  // The next frame does not follow the last one.
  void forget() { still_.clear(); }

 private:
  // A box that has not moved.
  struct Still {
    cv::Rect box;
    std::chrono::microseconds since, seen;
    std::chrono::microseconds next;  // when it is looked at again
    cv::Mat before;                  // the picture around it that was compared last
    cv::Mat evidence;  // CV_32F, around the box: sum of edges_in_picture of the component at each pixel
    int looks = 0;
    bool decided = false;  // by the last look
  };

  void follow(std::chrono::microseconds time, const std::vector<cv::Rect>& boxes);
  static bool moves(Still& still, const cv::Mat& now);
  static GhostPart ghosts_in(Still& still, const cv::Rect& area, const cv::Mat& picture,
                             const Learned& learned_in);

  std::vector<Still> still_;
};

}  // namespace lm::host::detector
