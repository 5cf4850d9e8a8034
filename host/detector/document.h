// The configuration document: completes what the user wrote for the plug-in.
#pragma once

#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>

namespace Json {
class Value;
}

namespace lm::host::detector {

// Why a text is not a configuration document, with the line and column, from 1, if known.
class NoDocument : public std::invalid_argument {
 public:
  explicit NoDocument(const std::string& cause) : std::invalid_argument(cause), cause_(cause) {}
  NoDocument(int line, int column, const std::string& cause);

  int line() const { return line_; }
  int column() const { return column_; }
  const std::string& cause() const { return cause_; }  // what() includes the position

 private:
  int line_ = 0;
  int column_ = 0;
  std::string cause_;
};

// The text as a JSON object; comments are allowed. Throws NoDocument.
Json::Value read_document(const std::string& text);

// The document used without --config.
std::string default_document();

// Adds the keys that `text` omits: "frmW", "frmH" and "frmChn" from the frame size (3 channels), and a "roi"
// that covers the whole frame. Everything else is unchanged. `frame`: empty if not known yet; then any stated
// size is accepted, and the default is that of the built-in scene. Throws std::invalid_argument with the
// cause if the text is not a JSON object or states another frame size.
std::string complete_document(const std::string& text, cv::Size frame);

}  // namespace lm::host::detector
