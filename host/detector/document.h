// The configuration document: from what the user wrote to what the plug-in is given.
#pragma once

#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>

namespace Json {
class Value;
}

namespace lm::host::detector {

// Why a text is no configuration document, and in which line and column, from 1, where that can be told.
class NoDocument : public std::invalid_argument {
 public:
  explicit NoDocument(const std::string& cause) : std::invalid_argument(cause), cause_(cause) {}
  NoDocument(int line, int column, const std::string& cause);

  int line() const { return line_; }
  int column() const { return column_; }
  const std::string& cause() const { return cause_; }  // what() has the place as well

 private:
  int line_ = 0;
  int column_ = 0;
  std::string cause_;
};

// The text as a JSON object; comments are allowed. Throws NoDocument.
Json::Value read_document(const std::string& text);

// What runs without --config.
std::string default_document();

// Adds to `text` what it leaves out: "frmW", "frmH" and "frmChn" from the frames' size (3 channels), and a
// "roi" that covers the whole frame. Everything else stays as it is. An empty `frame`: its size is not known
// yet; any that is stated is right, and else it is that of the built-in scene. Throws std::invalid_argument,
// naming the cause, when the text is not a JSON object or states other frame sizes.
std::string complete_document(const std::string& text, cv::Size frame);

}  // namespace lm::host::detector
