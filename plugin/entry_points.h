/*
 * lightmotion: the four functions through which a host drives the motion detector. Valid C and C++.
 *
 * Conventions
 *  1. Order: initialization once; then frameProc for every frame, each optionally followed by getRes while
 *     *resultLen > 0; then terminate. After terminate, initialization may start again. There is one detector
 *     per process.
 *  2. Texts are NUL-terminated. Nothing is shared: the frame is read during frameProc only, texts during the
 *     call only, and the result is copied into the caller's buffer.
 *  3. Threads: call from one thread at a time. Nothing is locked. The library starts no threads.
 *  4. Pixels are 8-bit interleaved, rows top to bottom without padding, with 1 (grey), 3 (blue, green, red)
 *     or 4 bytes per pixel (blue, green, red, anything). Every frame has the configured size.
 *  5. Errors are return values, with a line on standard output (configuration) or standard error (engine).
 *     Input that breaks the rules below raises C++ exceptions through these functions. A C host cannot catch
 *     them and must pass valid input.
 *  6. Clip every box to the frame before any use: x + width and y + height can exceed 1, because a box at the
 *     right or bottom border is as wide or as high as the whole frame.
 *  7. The same document, frames and timestamps give the same bytes, with two exceptions. For pixels near the
 *     border, neighbours are drawn with the C library's rand() on the first frame, so boxes there can differ
 *     slightly in a second detector of a process or in a host that calls rand(). For some frame sizes, boxes
 *     in the bottom right corner can differ between processors with and without AVX2.
 *  8. The host may export a logging function `log_File_Debug_s` (C linkage). It is called once when the
 *     configuration asks for automatic sensitivity.
 */
#ifndef LIGHTMOTION_PLUGIN_ENTRY_POINTS_H
#define LIGHTMOTION_PLUGIN_ENTRY_POINTS_H

#ifdef __cplusplus
extern "C" {
#else
#include <stdbool.h>
#endif

/*
 * Creates and configures the detector from the JSON document `config`.
 * Returns true when the detector is ready; false when one exists already (which is not changed), when the
 * document is refused (one or two lines on standard output give the reason) or when the detector itself
 * cannot be allocated. Throws, and leaves no detector: std::logic_error for a null document;
 * std::invalid_argument or std::out_of_range ("stoi", "stof") for a value that is not a number or out of
 * range; Json::Exception for a document whose root, regions or points have the wrong JSON type;
 * std::bad_alloc and std::length_error.
 */
bool initialization(const char* config);

/*
 * Processes one frame. `frame`: width x height x channels bytes as configured. `timestamp`: the frame's time
 * in milliseconds as a decimal number; "0" or a negative number means "unknown", and the wall clock is used
 * instead. Sets *resultLen to the length of the result document in bytes without its NUL, or to 0 when
 * nothing moved. Returns 1, or 0 without changing *resultLen when there is no detector. Throws, with
 * *resultLen 0 and an empty result document: std::logic_error for a null timestamp and std::invalid_argument
 * or std::out_of_range ("stoll") for one that is not a number or out of range, before the frame is learned;
 * std::bad_alloc and std::length_error, possibly after. The detector continues with the next frame.
 */
int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen);

/*
 * Copies the result document of the last frame, with its NUL, into `out`: *resultLen + 1 bytes. The document
 * is empty when the last frame had no boxes or there was no frame yet. Returns 1, or 0 without writing to
 * `out` when there is no detector.
 */
int getRes(char* out);

/* Destroys the detector, if there is one. Returns 1. */
int terminate(void);

#ifdef __cplusplus
}
#endif

#endif /* LIGHTMOTION_PLUGIN_ENTRY_POINTS_H */
