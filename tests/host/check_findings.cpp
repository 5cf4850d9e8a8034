#include "tests/host/check_findings.h"

#include <algorithm>

namespace lm::host::check {

host::detector::check::Verdict for_plugin(const std::string& document, std::optional<cv::Size> frame) {
  return host::detector::check::check_document(document, frame, host::detector::check::Reader::plugin);
}

std::vector<std::string> places_of(const host::detector::check::Verdict& verdict) {
  std::vector<std::string> lines;
  for (const host::detector::check::Finding& finding : verdict.findings) {
    std::string line = host::detector::check::name_of(finding.severity);
    line.append(" ").append(std::to_string(finding.line)).append(":");
    line.append(std::to_string(finding.column)).append(" ").append(finding.key);
    lines.push_back(line);
  }
  return lines;
}

host::detector::check::Finding finding_on(const host::detector::check::Verdict& verdict,
                                          const std::string& key) {
  const auto found =
      std::find_if(verdict.findings.begin(), verdict.findings.end(),
                   [&](const host::detector::check::Finding& finding) { return finding.key == key; });
  return found == verdict.findings.end() ? host::detector::check::Finding{} : *found;
}

}  // namespace lm::host::check
