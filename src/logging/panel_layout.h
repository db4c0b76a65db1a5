#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "instruments/catalogue.h"
#include "logging/session_view.h"

// Where the panel's fields stand, worked out from the width, the scale and the font: nothing overlaps, and every field
// has room for the widest text that its kind of instrument can show in it.
namespace kalmira {

enum class PanelFont {
  text,   // labels, GPS, messages
  value,  // readings and station, to be read at a glance
  state,  // the state word, to be read from two metres
};

// Width in pixels of `text` in that font at `pixelSize`.
using MeasureText = std::function<double(PanelFont font, double pixelSize, std::string_view text)>;

struct PanelCell {
  PanelField field = PanelField::file;
  PanelFont font = PanelFont::text;
  std::string_view label;                        // drawn before the text, "PDOP:"; empty for most
  int left = 0, top = 0, width = 0, height = 0;  // pixels, label included
  int labelWidth = 0;
  int padding = 0;  // left and right of the text, where its field has a colour of its own
};

struct PanelLayout {
  std::vector<PanelCell> cells;
  double textSize = 0, valueSize = 0, stateSize = 0;  // font sizes, pixels
  int stateBandHeight = 0;                            // the coloured band along the upper edge
  int height = 0;                                     // of the whole panel
  double size(PanelFont font) const;
};

struct PanelSpace {
  Kind kind = Kind::orla;
  bool iceOption = false;
  bool wideLayout = true;
  bool gps = false;    // GPS input is on: its fields stand in place of the note
  double scale = 1.0;  // pixels a unit
  int width = 0;       // pixels
  bool roomy = false;  // the window is larger than the layouts: values are large and have their units
  int mostHeight = 0;  // pixels; smaller fonts keep the panel within it as far as they can be read. 0: any
};

// The widest text that a field can show in a session of this kind; empty where the kind never uses the field.
std::vector<std::string> widestTexts(const PanelSpace& space, PanelField field);

// The largest fonts, up to what the scale asks for, with which everything fits.
PanelLayout layOutPanel(const PanelSpace& space, const MeasureText& measure);

}  // namespace kalmira
