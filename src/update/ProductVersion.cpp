#include "update/ProductVersion.h"

namespace veltor {

// Alone in its file: a test build that defines ProductVersion itself leaves this object out of its link.
const std::array<int, 4> ProductVersion = kReleaseVersion;

}  // namespace veltor
