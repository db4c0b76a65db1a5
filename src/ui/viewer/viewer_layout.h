#pragma once

#include <QRect>
#include <array>

#include "viewer/navigation.h"

// Where the viewer's parts stand, in pixels.
namespace kalmira {

struct ViewerLayout {
  QRect lines;                              // the list of survey lines
  std::array<QRect, kViewButtons> buttons;  // in the order of viewEntries
  QRect caption;                            // file, kind, messages
  QRect readout;
  QRect plot;
  QRect overview;
  double scale = 1.0;  // pixels a unit, for fonts
};

// For a window of that size: upright 240 x 320 units, lying 320 x 240. Buttons are `touchHeight` high or more; the plot
// gets what is left.
ViewerLayout layOutViewer(int width, int height, int touchHeight);

}  // namespace kalmira
