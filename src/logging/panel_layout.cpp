#include "logging/panel_layout.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>

#include "logging/panel.h"

// The widest texts of every panel field.
namespace kalmira {
namespace {

// All in units; a scale makes them pixels.
constexpr double kMargin = 3;
constexpr double kGap = 4;  // between two cells of a row
constexpr double kBatteryWidth = 40;
constexpr double kTextSize = 12;
constexpr double kValueSize = 18;
constexpr double kRoomyValueSize = 34;  // in a window larger than the layouts, as far as there is room
constexpr double kSmallestValueSize = 13;
constexpr double kSmallestTextSize = 9;  // where height is wanted
constexpr double kStateSizePortrait = 22;
constexpr double kStateSizeLandscape = 21;
constexpr double kSmallestStateSize = 15;  // the word gives way to nothing below this
// A row's height and the room of the state's shape, by the size of its largest font.
constexpr double kTextRowHeight = 1.15;
constexpr double kValueRowHeight = 1.1;
constexpr double kStateRowHeight = 1.1;
constexpr double kShapeWidth = 0.85;
constexpr int kSmallestFont = 5;  // pixels: where a font stops being one

using RowShape = PanelRow::Shape;

struct Row {
  RowShape shape = RowShape::flow;
  std::vector<PanelField> fields;
};

struct Sizes {
  int text = 0, value = 0, state = 0;
};

// Everything that a layout is worked out from.
struct Job {
  const PanelSpace& space;
  const MeasureText& measure;
  const std::vector<std::vector<std::string>>& texts;  // the widest, by field
  int margin, gap, batteryWidth;
};

int pixels(const PanelSpace& space, double units) {
  return std::max(1, static_cast<int>(std::lround(units * space.scale)));
}

PanelFont fontOf(PanelField field) {
  switch (field) {
    case PanelField::state: return PanelFont::state;
    case PanelField::station:
    case PanelField::value1:
    case PanelField::value2:
    case PanelField::value3:
    case PanelField::value4:
    case PanelField::value5:
    case PanelField::value6: return PanelFont::value;
    default: return PanelFont::text;
  }
}

std::string_view labelOf(PanelField field) {
  switch (field) {
    case PanelField::pdop: return "PDOP:";
    case PanelField::satellites: return "Sat:";
    case PanelField::line: return "L:";
    default: return {};
  }
}

int sizeOf(const Sizes& sizes, PanelFont font) {
  switch (font) {
    case PanelFont::text: return sizes.text;
    case PanelFont::value: return sizes.value;
    case PanelFont::state: return sizes.state;
  }
  return sizes.text;
}

// Which fields stand in which row, from above. Those that the kind does not use are taken out afterwards.
using F = PanelField;

Row rowOf(const PanelRow& row) { return {row.shape, {row.fields.begin(), row.fields.end()}}; }

std::vector<Row> portraitRows(const PanelSpace& space) {
  std::vector<Row> rows{{RowShape::band, {F::state, F::triggerMode, F::battery}},
                        {RowShape::flow, {F::file, F::mode, F::marker}},
                        {RowShape::flow, {F::stationLabel, F::station, F::repeat, F::line}}};
  const auto& instrument = instrumentOf(space.kind);
  const bool ice = space.iceOption && !instrument.uprightIceValues.empty();
  for (const auto& row : ice ? instrument.uprightIceValues : instrument.uprightValues) rows.push_back(rowOf(row));
  rows.push_back({RowShape::flow, {F::calibration}});
  rows.push_back({RowShape::flow, {F::gpsActivity, F::fix, F::pdop, F::satellites, F::gpsCount, F::gpsNote}});
  rows.push_back({RowShape::flow, {F::message}});
  return rows;
}

// What is short moves up beside the figures.
std::vector<Row> landscapeRows(const PanelSpace& space) {
  std::vector<Row> rows;
  for (const auto& figures : instrumentOf(space.kind).lyingFigures) {
    auto row = rowOf(figures);
    // With units, columns as wide as the widest would leave little of the figures' size.
    if (space.roomy && row.shape == RowShape::columns) row.shape = RowShape::flow;
    rows.push_back(std::move(row));
  }
  rows.push_back(
      {RowShape::flow, {F::gpsActivity, F::fix, F::pdop, F::satellites, F::gpsCount, F::gpsNote, F::mode, F::marker}});
  return rows;
}

std::vector<Row> usedRows(const Job& job) {
  auto rows = job.space.wideLayout ? portraitRows(job.space) : landscapeRows(job.space);
  for (auto& row : rows) {
    std::erase_if(row.fields, [&](PanelField field) { return job.texts[static_cast<std::size_t>(field)].empty(); });
  }
  std::erase_if(rows, [](const Row& row) { return row.fields.empty(); });
  return rows;
}

int widthOf(const Job& job, PanelFont font, const Sizes& sizes, std::string_view text) {
  return text.empty() ? 0 : static_cast<int>(std::ceil(job.measure(font, sizeOf(sizes, font), text)));
}

int labelWidthOf(const Job& job, PanelField field, const Sizes& sizes) {
  return widthOf(job, PanelFont::text, sizes, labelOf(field));
}

int paddingOf(const Job& job, PanelField field) { return field == F::message ? job.gap : 0; }

int cellWidth(const Job& job, PanelField field, const Sizes& sizes) {
  if (field == PanelField::battery) return job.batteryWidth - job.margin;
  int widest = 0;
  for (const auto& text : job.texts[static_cast<std::size_t>(field)]) {
    widest = std::max(widest, widthOf(job, fontOf(field), sizes, text));
  }
  return labelWidthOf(job, field, sizes) + widest + 2 * paddingOf(job, field);
}

int shapeWidth(const Sizes& sizes) { return static_cast<int>(std::lround(kShapeWidth * sizes.state)); }

int columnWidth(const Job& job, const Row& row) {
  return (job.space.width - 2 * job.margin) / static_cast<int>(row.fields.size());
}

bool fits(const Job& job, const Row& row, const Sizes& sizes) {
  if (row.shape == RowShape::columns) {
    return std::all_of(row.fields.begin(), row.fields.end(), [&](PanelField field) {
      return cellWidth(job, field, sizes) + job.gap <= columnWidth(job, row);
    });
  }
  int needed = 2 * job.margin + job.gap * static_cast<int>(row.fields.size() - 1);
  if (row.shape == RowShape::band) needed += shapeWidth(sizes) + job.gap;
  for (const auto field : row.fields) needed += cellWidth(job, field, sizes);
  return needed <= job.space.width;
}

bool contains(const Row& row, PanelFont font) {
  return std::any_of(row.fields.begin(), row.fields.end(), [font](PanelField field) { return fontOf(field) == font; });
}

// Makes the font smaller that can best bear it; false when there is none left.
bool shrinkFor(const Job& job, const Row& row, Sizes& sizes) {
  const bool textFirst = job.space.roomy && sizes.value <= pixels(job.space, kValueSize) &&
                         contains(row, PanelFont::text) &&
                         sizes.text > std::max(pixels(job.space, kSmallestTextSize), kSmallestFont);
  if (contains(row, PanelFont::state) && sizes.state > pixels(job.space, kSmallestStateSize)) {
    --sizes.state;
  } else if (!textFirst && contains(row, PanelFont::value) && sizes.value > std::max(sizes.text, kSmallestFont)) {
    --sizes.value;
  } else if (sizes.text > kSmallestFont) {
    --sizes.text;
  } else {
    return false;
  }
  return true;
}

int rowHeight(const Row& row, const Sizes& sizes) {
  if (row.shape == RowShape::band) return static_cast<int>(std::lround(kStateRowHeight * sizes.state));
  const double text = kTextRowHeight * sizes.text;
  const double value = contains(row, PanelFont::value) ? kValueRowHeight * sizes.value : 0.0;
  return static_cast<int>(std::lround(std::max(text, value)));
}

int panelHeight(const PanelSpace& space, const std::vector<Row>& rows, const Sizes& sizes) {
  int height = pixels(space, 1);  // a line to the chart
  for (const auto& row : rows) height += rowHeight(row, sizes);
  return height;
}

// Makes the panel lower: values give way down to their usual size, then the small texts, then everything.
bool lower(const PanelSpace& space, Sizes& sizes) {
  const auto shrink = [&space](int& size, double least) {
    if (size <= pixels(space, least)) return false;
    --size;
    return true;
  };
  return shrink(sizes.value, kValueSize) || shrink(sizes.text, kSmallestTextSize) ||
         shrink(sizes.state, kSmallestStateSize) || shrink(sizes.value, kSmallestValueSize);
}

// Rows of nothing but small text first: what they take away from it, the others need not take from figures.
Sizes fittingSizes(const Job& job, const std::vector<Row>& rows) {
  const auto& space = job.space;
  Sizes sizes{.text = pixels(space, kTextSize),
              .value = pixels(space, space.roomy ? kRoomyValueSize : kValueSize),
              .state = pixels(space, space.wideLayout ? kStateSizePortrait : kStateSizeLandscape)};
  for (const bool plain : {true, false}) {
    for (const auto& row : rows) {
      const bool isPlain = !contains(row, PanelFont::state) && !contains(row, PanelFont::value);
      if (isPlain != plain) continue;
      while (!fits(job, row, sizes) && shrinkFor(job, row, sizes)) continue;
    }
  }
  while (space.mostHeight > 0 && panelHeight(space, rows, sizes) > space.mostHeight) {
    if (!lower(space, sizes)) break;
  }
  return sizes;
}

PanelCell cellAt(const Job& job, PanelField field, const Sizes& sizes) {
  return {.field = field,
          .font = fontOf(field),
          .label = labelOf(field),
          .labelWidth = labelWidthOf(job, field, sizes),
          .padding = paddingOf(job, field)};
}

// Whether a field can use what its row leaves over: its texts have no fixed length, or are centred.
bool stretches(PanelField field) {
  return field == F::file || field == F::line || field == F::range || field == F::message || field == F::calibration;
}

int spareWidth(const Job& job, const Row& row, const Sizes& sizes) {
  int spare = job.space.width - 2 * job.margin - job.gap * static_cast<int>(row.fields.size() - 1);
  if (row.shape == RowShape::band) spare -= shapeWidth(sizes) + job.gap;
  for (const auto field : row.fields) spare -= cellWidth(job, field, sizes);
  return spare;
}

// What the row leaves over goes to the last cell that can use it, else to all in equal parts. The battery stands at the
// right.
void placeFlow(const Job& job, const Row& row, const Sizes& sizes, std::vector<PanelCell>& cells) {
  const int spare = std::max(spareWidth(job, row, sizes), 0);
  const auto stretched = std::find_if(row.fields.rbegin(), row.fields.rend(), stretches);
  const int share = spare / static_cast<int>(row.fields.size());
  int left = job.margin + (row.shape == RowShape::band ? shapeWidth(sizes) + job.gap : 0);
  for (const auto field : row.fields) {
    auto cell = cellAt(job, field, sizes);
    const bool takesAll = stretched != row.fields.rend() && *stretched == field;
    cell.width = cellWidth(job, field, sizes);
    if (takesAll) cell.width += spare;
    if (stretched == row.fields.rend() && field != F::battery) cell.width += share;
    cell.left = field == F::battery ? job.space.width - job.batteryWidth : left;
    left += cell.width + job.gap;
    cells.push_back(cell);
  }
}

void placeColumns(const Job& job, const Row& row, const Sizes& sizes, std::vector<PanelCell>& cells) {
  const int width = columnWidth(job, row);
  int left = job.margin;
  for (const auto field : row.fields) {
    auto cell = cellAt(job, field, sizes);
    cell.left = left;
    cell.width = width - job.gap;
    left += width;
    cells.push_back(cell);
  }
}

using Texts = std::vector<std::string>;

bool isValue(PanelField field) { return field >= PanelField::value1 && field <= PanelField::value4; }

// Numbers of lists that a setting may hold, and one more.
constexpr int kListValues = 7;

void addOnce(Texts& texts, const std::string& text) {
  if (!text.empty() && std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
}

// The texts that the instrument gives its widest readings, in whichever state the panel may show them.
Texts readingTexts(const PanelSpace& space, PanelField field) {
  const auto& instrument = instrumentOf(space.kind);
  Texts texts;
  for (const bool measuring : {false, true}) {
    if (measuring && !instrument.calibrated) continue;
    for (const bool feet : {false, true}) {
      const PanelStyle style{
          .wide = space.wideLayout || space.roomy, .iceOption = space.iceOption, .feet = feet, .measuring = measuring};
      for (const auto& reading : instrument.widestReadings) {
        for (const auto& [shown, text] : instrument.panelTexts(reading, style)) {
          if (shown == field || (instrument.valuesAlike && isValue(shown) && isValue(field))) addOnce(texts, text);
        }
      }
    }
  }
  return texts;
}

Texts modeTexts(const Instrument& instrument) {
  Texts texts;
  if (instrument.modeText == nullptr) return texts;
  for (const int mode : {kModeAuto, kModeWheel, kModeManual}) {
    for (int choice = 0; choice < kListValues; ++choice) addOnce(texts, instrument.modeText(mode, choice, choice));
  }
  return texts;
}

Texts calibrationTexts(bool wide) {
  if (wide) {
    return {"Rotate to Horiz. Mode within 60 s",     "Preparing for Horizontal Calibration",
            "Calibration Completed - Wait for Beep", "Vert. Mode Failed - Wait for Beep",
            "Hor. Mode Failed - Wait for Beep",      "Hor. Mode Not Detected - Wait for Beep"};
  }
  return {"Rotate to Horizontal Mode within 60 seconds", "Calibration Completed - Wait for Beep",
          "Horizontal Mode Failed - Wait for Beep", "Horizontal Mode Not Detected - Wait for Beep"};
}

Texts gpsTexts(PanelField field) {
  switch (field) {
    case PanelField::gpsActivity: return {"/", "\\"};
    case PanelField::gpsCount: return {"888888"};  // a day of ten positions a second
    case PanelField::satellites: return {"88", "??"};
    case PanelField::fix: return {"NO FIX", "CODE", "DGPS", "AGPS", "RTK8"};
    default: return {"888.8", "N/A"};
  }
}

Texts textsOf(const PanelSpace& space, PanelField field) {
  const auto& instrument = instrumentOf(space.kind);
  switch (field) {
    case PanelField::file:  // names of wide letters alone are drawn narrower
      return {"File:AREA8888"};
    case PanelField::state: return {"Stand By", "Logging", "Monitor"};
    case PanelField::battery: return {"100%"};
    case PanelField::triggerMode: return {"Manual", "Wheel", "Auto"};
    case PanelField::stationLabel: return {"Stn:", "S  :M"};
    case PanelField::station: return {stationText(-88888.88)};
    case PanelField::line:  // as lines are numbered; a long name is drawn narrower
      return {"-88888.88"};
    case PanelField::repeat: return instrument.readingsAtStation == nullptr ? Texts{} : Texts{"8"};
    case PanelField::mode: return modeTexts(instrument);
    case PanelField::range: return readingTexts(space, field);
    case PanelField::marker: return instrument.hasTrigger ? Texts{"M"} : Texts{};
    case PanelField::message:  // of a system's error words the usual ones
      return {"Please Wait...", instrument.hasTrigger ? "Sample 888 of 888" : "Disk full", "Input/output error"};
    case PanelField::calibration: return instrument.calibrated ? calibrationTexts(space.wideLayout) : Texts{};
    case PanelField::gpsNote: return space.gps ? Texts{} : Texts{"GPS  Input  disabled"};
    case PanelField::value1:
    case PanelField::value2:
    case PanelField::value3:
    case PanelField::value4:
    case PanelField::value5:
    case PanelField::value6: return readingTexts(space, field);
    default: return space.gps ? gpsTexts(field) : Texts{};
  }
}

}  // namespace

double PanelLayout::size(PanelFont font) const {
  switch (font) {
    case PanelFont::text: return textSize;
    case PanelFont::value: return valueSize;
    case PanelFont::state: return stateSize;
  }
  return textSize;
}

PanelLayout layOutPanel(const PanelSpace& space, const MeasureText& measure) {
  std::vector<std::vector<std::string>> texts;
  for (int field = 0; field < kPanelFields; ++field) {
    texts.push_back(widestTexts(space, static_cast<PanelField>(field)));
  }
  const Job job{.space = space,
                .measure = measure,
                .texts = texts,
                .margin = pixels(space, kMargin),
                .gap = pixels(space, kGap),
                .batteryWidth = pixels(space, kBatteryWidth)};
  const auto rows = usedRows(job);
  const auto sizes = fittingSizes(job, rows);
  PanelLayout layout;
  layout.textSize = sizes.text;
  layout.valueSize = sizes.value;
  layout.stateSize = sizes.state;
  for (const auto& row : rows) {
    const auto first = layout.cells.size();
    const auto place = row.shape == RowShape::columns ? placeColumns : placeFlow;
    place(job, row, sizes, layout.cells);
    const int height = rowHeight(row, sizes);
    for (auto i = first; i < layout.cells.size(); ++i) {
      layout.cells[i].top = layout.height;
      layout.cells[i].height = height;
    }
    if (row.shape == RowShape::band) layout.stateBandHeight = height;
    layout.height += height;
  }
  layout.height += pixels(space, 1);  // a line to the chart
  return layout;
}

std::vector<std::string> widestTexts(const PanelSpace& space, PanelField field) {
  auto texts = textsOf(space, field);
  // Blanks at the end need no room.
  for (auto& text : texts) text.resize(text.find_last_not_of(' ') + 1);
  return texts;
}

}  // namespace kalmira
