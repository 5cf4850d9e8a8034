#include "host/detector/check/before_run.h"

#include <vector>

#include "host/base/failure.h"
#include "host/base/notice.h"
#include "host/detector/check/check.h"
#include "host/detector/check/text.h"

namespace lm::host::detector::check {

void check_before_run(const std::string& name, const std::string& text, std::optional<cv::Size> frame) {
  std::vector<Finding> errors;
  for (const Finding& finding : check_document(text, frame).findings) {
    if (finding.severity == Severity::error) errors.push_back(finding);
    if (finding.severity == Severity::warning) base::warn(sentence(name, finding));
  }
  if (errors.empty()) return;
  std::string cause = sentence(name, errors.front());
  if (errors.size() > 1) {
    cause.append("; and ")
        .append(std::to_string(errors.size() - 1))
        .append(" more (lightmotion check lists all)");
  }
  throw base::Failure(base::kRefused, cause);
}

}  // namespace lm::host::detector::check
