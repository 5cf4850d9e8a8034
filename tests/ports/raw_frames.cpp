// usage: raw_frames COUNT [FILE]
// Writes the first COUNT frames, five per second, of a video or of the built-in scene for print_results: a
// line with width and height, then the pixels.
#include <cstdlib>
#include <iostream>
#include <memory>

#include "host/source/source.h"

int main(int argc, char** argv) {
  if (argc < 2) return EXIT_FAILURE;
  using namespace lm::host::source;
  const std::unique_ptr<Source> source = open_source(argc > 2 ? argv[2] : "", {.fps = 5});
  std::cout << source->info().size.width << ' ' << source->info().size.height << '\n';
  Frame frame;
  for (int left = std::atoi(argv[1]); left > 0 && source->next(frame); --left) {
    std::cout.write(reinterpret_cast<const char*>(frame.image.data),
                    static_cast<std::streamsize>(frame.image.total() * frame.image.elemSize()));
  }
  return std::cout.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
}
