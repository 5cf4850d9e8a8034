// What a box encloses.
#pragma once

namespace lm {

enum class Extent {
  core,    // a component of what peeling leaves
  full,    // the component of the foreground that contains such a core
  object,  // all such components that belong to an object (objects/grouping.h)
};

}  // namespace lm
