/*
 * lightmotion: the four functions through which a host drives the motion detector. Valid C and C++.
 *
 * Conventions
 *  1. Order: initialization once; then frameProc for every frame, each optionally followed by getRes while
 *     *resultLen > 0; then terminate. After terminate, initialization may start over. There is one detector a
 *     process.
 *  2. Texts are NUL-terminated. Nothing is shared: the frame is read during frameProc only, the texts during
 * the call only, and the result is copied into the caller's buffer.
 *  3. One thread: call from one thread at a time. Nothing is locked. The library starts no threads.
 *  4. Pixels are 8-bit interleaved, rows top to bottom without padding, 1 (grey), 3 (blue, green, red) or
 *     4 (blue, green, red, anything) bytes a pixel. Every frame has the size that the configuration gave.
 *  5. Errors are return values, with a line on standard output (configuration) or standard error (engine).
 * Input that breaks the rules below raises C++ exceptions through these functions; a C host cannot catch them
 * and must therefore hand over valid input.
 *  6. The host may export a logging function `log_File_Debug_s` (C linkage): it is called once when the
 *     configuration asks for automatic sensitivity. Hosts without it work as well.
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
 * Returns true when the detector stands; false when one exists already (which stays as it is), when the
 * document is refused (one or two lines on standard output say why) or when memory for the detector itself is
 * lacking. Throws, with no detector left behind: std::logic_error for a null document; std::invalid_argument
 * or std::out_of_range ("stoi", "stof") for a value that holds no number or one out of range; Json::Exception
 * for a document whose root, regions or points are of the wrong JSON kind; std::bad_alloc.
 */
bool initialization(const char* config);

/*
 * Processes one frame. `frame`: width x height x channels bytes as configured. `timestamp`: the frame's time
 * in milliseconds as a decimal number; "0" or a negative number means "unknown", and the wall clock is used
 * instead. Sets *resultLen to the length of the result document in bytes without its NUL, or to 0 when
 * nothing moved. Returns 1, or 0 without touching *resultLen when there is no detector. Throws, with the
 * detector left as it was: std::logic_error for a null timestamp; std::invalid_argument or std::out_of_range
 * ("stoll") for one that holds no number or one out of range; std::bad_alloc.
 */
int frameProc(const unsigned char* frame, const char* timestamp, int* resultLen);

/*
 * Copies the result document of the last frame, with its NUL, into `out`: *resultLen + 1 bytes. The document
 * is empty when the last frame had no boxes or no frame was seen. Returns 1, or 0 without touching `out` when
 * there is no detector.
 */
int getRes(char* out);

/* Destroys the detector, if there is one. Returns 1. */
int terminate(void);

#ifdef __cplusplus
}
#endif

#endif /* LIGHTMOTION_PLUGIN_ENTRY_POINTS_H */
