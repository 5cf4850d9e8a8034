// The assignment problem: pairs rows with columns at the lowest total cost.
#pragma once

#include <opencv2/core.hpp>
#include <vector>

namespace lm::host::events::objects {

// The Hungarian method (Kuhn 1955, Munkres 1957), as shortest augmenting paths with potentials. `cost`: a
// matrix of finite numbers. Returns the column of each row; -1 for the rows left over when there are fewer
// columns than rows.
std::vector<int> assign(const cv::Mat1d& cost);

}  // namespace lm::host::events::objects
