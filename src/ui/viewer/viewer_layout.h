#pragma once

#include <array>

#include "viewer/viewer_commands.h"

// Where the viewer's parts stand, in pixels.
namespace kalmira {

struct ViewBox {
  int left = 0;
  int top = 0;
  int width = 0;
  int height = 0;
};

struct ViewerLayout {
  ViewBox lines;                                // the list of survey lines
  std::array<ViewBox, kViewButtons> buttons{};  // in the order of viewEntries
  ViewBox caption;                              // file, kind, messages
  ViewBox readout;
  ViewBox plot;
  ViewBox overview;
  double scale = 1.0;  // pixels a unit, for fonts
};

// For a window of that size: upright 240 x 320 units, lying 320 x 240. Buttons are `touchHeight` high or
// more; the plot gets what is left.
ViewerLayout layOutViewer(int width, int height, int touchHeight);

}  // namespace kalmira
