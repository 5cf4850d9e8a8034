/*
 * lightmotion: motion detectors by handle. Valid C11 and C++.
 *
 *     const char *configuration =
 *         "{\"frmW\": 1280, \"frmH\": 720, \"format\": \"bgr\", \"sensitivity\": 4}";
 *     char message[512];
 *     lightmotion_detector *detector = lightmotion_create(configuration, message, sizeof message);
 *     if (detector == NULL) return fail(message);
 *     while (next_frame(&pixels, &stride, &milliseconds)) {
 *       const lightmotion_box *boxes;
 *       int count = lightmotion_process(detector, pixels, stride, milliseconds, &boxes);
 *       if (count < 0) return fail(lightmotion_error_text(count));
 *       for (int i = 0; i < count; ++i) draw(boxes[i].x, boxes[i].y, boxes[i].width, boxes[i].height);
 *     }
 *     lightmotion_destroy(detector);
 *
 * Contract of all functions
 *
 *  1. Detectors. Any number in a process. They share nothing: the same configuration, frames and timestamps
 *     give the same results in every detector, whatever else the process does, in every locale.
 *  2. Threads. Different detectors may be used in different threads at the same time. One detector is used by
 *     one thread at a time, also for the functions that take it as const; it may change threads between
 *     calls. Functions without a detector may be called from any thread at any time. The library starts no
 *     threads and does not block.
 *  3. Side effects. No function throws, prints, ends the process, reads environment variables, opens files or
 *     calls rand(). The wall clock is read only for frames without a timestamp.
 *  4. Errors. Functions that return int return a negative lightmotion_error. A function that fails because of
 *     its arguments has changed nothing. After LIGHTMOTION_ERROR_MEMORY the detector can still be used.
 *  5. Ownership. The detector belongs to the caller until lightmotion_destroy. What the library returns by
 *     pointer (boxes, texts) belongs to the detector; each function says how long it is valid. The library
 *     keeps no pointer of the caller: frames and texts are read during the call only.
 *  6. Texts are NUL-terminated UTF-8. Where `message` is written, at most `message_size` bytes are, always
 *     with a NUL and never with half a character; it may be null if `message_size` is 0.
 *  7. Compatibility. Within a major version no function disappears or changes its meaning, and no member of a
 *     record moves. A record that a caller makes begins with its size, so that later versions can append
 *     members; a record that the library makes has reserved bytes for them and keeps its size. New errors and
 *     formats may appear.
 *
 * Configuration
 *
 * The JSON document of the plug-in (docs/integration.md), in which numbers may be JSON numbers as well as
 * strings: {"frmW": 640} and {"frmW": "640"} are the same. Differences:
 *
 *     frmW, frmH        the frame size in pixels; required, unless passed to lightmotion_create_for
 *     format            the pixels of a frame: "grey", "bgr", "rgb", "bgrx", "rgbx", or "i420" or "nv12", of
 *                       which the luma plane is passed. Required, unless passed to lightmotion_create_for or
 *                       given by frmChn: 1 is grey, 3 is bgr, 4 is bgrx
 *     roi               regions of interest; without it the whole frame is watched, as one region "frame"
 *     absorb_seconds    how long something that stands still stays foreground: 0.1 to 86400, or "forever".
 *                       It replaces lifeStatic, and follows the frame rate at every rate. Default: lifeStatic
 *     extent            "core" (default): boxes around what is left of a moving thing after peeling; "full":
 *                       boxes around whole connected components of the foreground that contain such a core;
 *                       "object": boxes around all such components that belong together by their sizes and
 *                       places (a head above a body, specks around it), without a margin of a pixel.
 *                       join_gap then has no effect
 *     peel              layers that are peeled off the foreground before components are found, 0 to 3
 *                       (default). Fewer keep smaller and thinner things, and more noise
 *
 *     join_gap          boxes whose gap is at most this share of the frame's longer side become one, 0 to 1.
 *                       Smaller keeps things apart that pass each other; larger keeps a thing in one piece of
 *                       which the detector sees several. Default: 1/32, as for the entry points
 *
 * A value of null is the default, as if the key were absent. Without absorb_seconds, extent, peel and
 * join_gap the boxes are those of the entry points (plugin/entry_points.h) in a fresh process.
 *
 * A configuration is refused if it cannot be read or if nothing could ever be detected. What is accepted but
 * probably not meant, such as a misspelt key, gives a warning.
 */
#ifndef LIGHTMOTION_LIGHTMOTION_H /* C: NOLINTBEGIN(modernize-deprecated-headers,modernize-use-using) */
#define LIGHTMOTION_LIGHTMOTION_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- version ------------------------------------------------------------------------------------------- */

/* Version of this header, first number. */
#define LIGHTMOTION_VERSION_MAJOR 1
/* Second number. */
#define LIGHTMOTION_VERSION_MINOR 0
/* Third number. */
#define LIGHTMOTION_VERSION_PATCH 0

/* Version of this header, as a number that can be compared: 10203 is 1.2.3. */
#define LIGHTMOTION_VERSION \
  (LIGHTMOTION_VERSION_MAJOR * 10000 + LIGHTMOTION_VERSION_MINOR * 100 + LIGHTMOTION_VERSION_PATCH)

/* Of the library that is running; the same number as LIGHTMOTION_VERSION of its header. */
int lightmotion_version(void);

/* The same as a text, such as "1.2.3". Valid for ever. */
const char* lightmotion_version_text(void);

/* ---- errors -------------------------------------------------------------------------------------------- */

/* What functions return instead of a result. */
typedef enum lightmotion_error {
  LIGHTMOTION_OK = 0,
  LIGHTMOTION_ERROR_ARGUMENT = -1,      /* a null pointer, a stride that is too small, an unknown number */
  LIGHTMOTION_ERROR_CONFIGURATION = -2, /* refused; the message says which key and why */
  LIGHTMOTION_ERROR_MEMORY = -3,        /* an allocation failed */
  LIGHTMOTION_ERROR_NO_FRAME = -4,      /* no frame has been processed since creation or reset */
  LIGHTMOTION_ERROR_INTERNAL = -5       /* a bug in the library: please report it */
} lightmotion_error;

/* What an error means, in a few words, such as "out of memory"; also for numbers that are none. Valid for
   ever. */
const char* lightmotion_error_text(int error);

/* ---- life ---------------------------------------------------------------------------------------------- */

/* One detector: a configuration and what it has learned. */
typedef struct lightmotion_detector lightmotion_detector;

/* The format of the pixels of a frame. */
typedef enum lightmotion_format {
  LIGHTMOTION_FORMAT_UNKNOWN = 0, /* as the configuration says */
  LIGHTMOTION_FORMAT_GREY = 1,    /* 1 byte per pixel */
  LIGHTMOTION_FORMAT_BGR = 2,     /* 3 bytes */
  LIGHTMOTION_FORMAT_RGB = 3,     /* gives what BGR gives for the same picture */
  LIGHTMOTION_FORMAT_BGRX = 4,    /* 4 bytes; the fourth is ignored */
  LIGHTMOTION_FORMAT_RGBX = 5,
  LIGHTMOTION_FORMAT_I420 = 6, /* pass the luma plane: 1 byte per pixel, as grey */
  LIGHTMOTION_FORMAT_NV12 = 7
} lightmotion_format;

/*
 * Creates a detector from a configuration (see the top of this file). Returns null if the configuration is
 * refused or memory is out; `message` then names the key, the value and what would be right, and is
 * lightmotion_error_text(LIGHTMOTION_ERROR_MEMORY) when memory is out. Otherwise `message` has the warnings,
 * one per line, or is empty. The pixel buffers, about 73 bytes per pixel (30 for one byte per pixel), are
 * made by the first frame.
 */
lightmotion_detector* lightmotion_create(const char* configuration, char* message, size_t message_size);

/*
 * The same for frames of a known size and format: each of `width`, `height` and `format` (a
 * lightmotion_format) that is not 0 stands for the key that the configuration leaves out. It is refused if it
 * contradicts a key that is there. `configuration` may be null, for defaults.
 */
lightmotion_detector* lightmotion_create_for(const char* configuration, int32_t width, int32_t height,
                                             int format, char* message, size_t message_size);

/* Destroys a detector and everything that it owns. Does nothing for null. */
void lightmotion_destroy(lightmotion_detector* detector);

/*
 * Changes a configuration without learning anew. `changes` is a JSON object: its keys replace those of the
 * configuration, null restores a default (JSON merge patch, RFC 7386; roi and ror are replaced as a whole).
 * The frame size and format cannot be changed. For example {"sensitivity": 5}, or {"roi": null} to watch the
 * whole frame.
 *
 * Takes effect with the next frame. Pixels that were watched before keep what was learned; pixels that were
 * not are learned from the next frame as from a first one, so that they have no boxes in it. Returns
 * LIGHTMOTION_OK with the warnings of the whole configuration in `message`; if the outcome is refused, an
 * error and its reason, and nothing has changed. On success, boxes, JSON text and region names become
 * invalid.
 */
int lightmotion_change(lightmotion_detector* detector, const char* changes, char* message,
                       size_t message_size);

/*
 * Forgets everything learned, for a stream that begins anew: the next frame is a first one, and what follows
 * is what a new detector with the same configuration, changes included, would give. Boxes and JSON text
 * become invalid. Returns LIGHTMOTION_OK, or LIGHTMOTION_ERROR_ARGUMENT for null.
 */
int lightmotion_reset(lightmotion_detector* detector);

/*
 * Learns a part of the frame anew: its pixels are learned from the next frame as from a first one, so that
 * they are no foreground in it; all others keep what was learned. For what is known to be no object, such as
 * the place that a parked car has left.
 *
 * The part: a rectangle that lies within the frame, and of it the pixels where `mask` is not 0; null is the
 * whole rectangle. `mask`: height rows of width bytes, `stride` bytes from the start of a row to the start of
 * the next, 0 for rows without padding; what lightmotion_foreground_part has copied can be passed. Pixels
 * that are not watched stay so. Parts of several calls add up until the next frame.
 * Before the first frame there is nothing to forget, and the call has no effect. Results of the last frame
 * stay valid. Returns LIGHTMOTION_OK, LIGHTMOTION_ERROR_ARGUMENT or LIGHTMOTION_ERROR_MEMORY.
 */
int lightmotion_relearn(lightmotion_detector* detector, int32_t x, int32_t y, int32_t width, int32_t height,
                        const void* mask, size_t stride);

/* ---- frames -------------------------------------------------------------------------------------------- */

/*
 * One box around something that moves. Boxes have a margin of one pixel and are clipped to the frame: x and y
 * are at least 0, x + width and y + height at most the frame size.
 */
typedef struct lightmotion_box {
  int32_t x, y, width, height;               /* pixels, from the top left corner */
  float rel_x, rel_y, rel_width, rel_height; /* the same as fractions of the frame's width and height */
  const int32_t* regions; /* indices of the regions of interest that it touches, rising: those in which some
                             foreground pixel of the box lies; at least one */
  int32_t region_count;   /* how many these are */
  uint32_t reserved[5];   /* 0 */
} lightmotion_box;

/*
 * Processes one frame. `pixels`: the first byte of the top row. `stride`: bytes from the start of a row to
 * the start of the next, at least width x bytes per pixel; 0 for rows without padding. The padding between
 * rows may be read, without effect; after the last row nothing is. `timestamp_ms`: the time of the frame in
 * milliseconds, later than the one before; only differences matter. The frame rate, and from it how long
 * things may stand still, is derived from it. Negative: unknown, the wall clock is used.
 *
 * Returns the number of boxes and stores them in *boxes, valid until the next call for this detector that
 * processes, changes, resets or destroys; null when there are none. `boxes` may be null if only the number
 * matters. The first frame has no boxes. LIGHTMOTION_ERROR_ARGUMENT: the frame was not learned.
 * LIGHTMOTION_ERROR_MEMORY: on a first frame nothing was learned, and the next frame is the first one; later
 * the frame was learned but its boxes are lost.
 */
int lightmotion_process(lightmotion_detector* detector, const void* pixels, size_t stride,
                        int64_t timestamp_ms, const lightmotion_box** boxes);

/*
 * The boxes of the last frame as the result document of the entry points, byte for byte what getRes gives:
 * {"object":[{"height":...,"inRoi":[],"width":...,"x":...,"y":...}],"timestamp":"1000"} and a line feed, or
 * an empty text when there are no boxes. As there, boxes are fractions that are not clipped, and "inRoi" is
 * empty. Returns null when memory is out or `detector` is null. `length`, which may be null, gets the length
 * in bytes. Valid as long as the boxes.
 */
const char* lightmotion_json(lightmotion_detector* detector, size_t* length);

/*
 * Copies the foreground of the last frame: 255 where a pixel differs from the background, else 0. `mask`:
 * height rows of width bytes; `stride` as for lightmotion_process, padding is not written. Before peeling; 0
 * outside the watched area and for a first frame. LIGHTMOTION_ERROR_NO_FRAME before the first frame.
 */
int lightmotion_foreground(const lightmotion_detector* detector, void* mask, size_t stride);

/*
 * The same for a part of the frame: a rectangle that lies within it, such as a box. `mask`: height rows of
 * width bytes. The cost is that of the part.
 */
int lightmotion_foreground_part(const lightmotion_detector* detector, int32_t x, int32_t y, int32_t width,
                                int32_t height, void* mask, size_t stride);

/*
 * Copies the learned background as a picture in the format of the frames (one byte per pixel for luma). Where
 * nothing is watched it is 0, and so is the fourth byte of a pixel. LIGHTMOTION_ERROR_NO_FRAME before the
 * first frame.
 */
int lightmotion_background(const lightmotion_detector* detector, void* pixels, size_t stride);

/* The same for a part of the frame, as for lightmotion_foreground_part. */
int lightmotion_background_part(const lightmotion_detector* detector, int32_t x, int32_t y, int32_t width,
                                int32_t height, void* pixels, size_t stride);

/* ---- queries ------------------------------------------------------------------------------------------- */

/*
 * The name of a region of interest, by its index in the configuration's roi; a region without a name has the
 * name "". Null if there is no such region. Valid until lightmotion_change or lightmotion_destroy.
 */
const char* lightmotion_region_name(const lightmotion_detector* detector, int32_t index);

/* What is known of a detector. */
typedef struct lightmotion_info {
  size_t struct_size;      /* set by the caller: sizeof(lightmotion_info) */
  int32_t width, height;   /* of a frame, pixels */
  int32_t format;          /* a lightmotion_format */
  int32_t bytes_per_pixel; /* 1, 3 or 4 */
  int32_t region_count;    /* regions of interest; 1 without any: the frame */
  float watched;     /* share of the frame inside the regions of interest and outside exclusion regions */
  int64_t frames;    /* processed since creation or reset */
  double frame_rate; /* frames per second, from the last timestamps; 30 until there are two */
  uint64_t memory;   /* bytes that the detector has allocated for pixels; grows with the first frame */
} lightmotion_info;

/* Fills in the members that fit into info->struct_size bytes. */
int lightmotion_get_info(const lightmotion_detector* detector, lightmotion_info* info);

#ifdef __cplusplus
}
#endif

#endif /* LIGHTMOTION_LIGHTMOTION_H NOLINTEND(modernize-deprecated-headers,modernize-use-using) */
