#pragma once

#include <string>

#include "view/renderer/offscreen.h"

namespace tarnwick::tests {

/// Why nothing can be drawn here; "" where a context can be had. Under the thread sanitizer nothing is drawn: the
/// driver's own threads are not built for it, and it takes their ways of waiting for none.
inline std::string WhyNotDrawn() {
#ifdef __SANITIZE_THREAD__
  return "the driver is not built for the thread sanitizer";
#else
  std::string reason;
  return view::Offscreen::Make(reason) == nullptr ? reason : "";
#endif
}

}  // namespace tarnwick::tests
