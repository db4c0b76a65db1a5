#include "gps/monitor.h"

#include <algorithm>
#include <cmath>

#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::size_t indexOf(MonitorCommand command) { return static_cast<std::size_t>(command); }

void passDefaultOn(MonitorState& state, MonitorCommand hidden, MonitorCommand shown) {
  if (state.monitorDefaultButton == static_cast<int>(hidden)) {
    state.monitorDefaultButton = static_cast<int>(shown);
  }
}

void nextDefault(MonitorState& state) {
  do state.monitorDefaultButton = (state.monitorDefaultButton + 1) % kMonitorCommands;
  while (!monitorButtonShown(state, static_cast<MonitorCommand>(state.monitorDefaultButton)));
}

// One layout, in units of the screen it was drawn for.
struct MonitorUnits {
  int width, height;
  int listWidth, listHeight, summaryHeight;
  int buttonWidth, gap;
};
constexpr MonitorUnits kUpright{240, 320, 236, 260, 42, 76, 4};
constexpr MonitorUnits kLying{320, 240, 316, 178, 30, 104, 2};
constexpr int kMargin = 2;       // units
constexpr int kButtonRise = 28;  // units from the lower edge to the upper edge of the buttons

int pixels(double units, double scale) { return static_cast<int>(std::lround(units * scale)); }

}  // namespace

std::string_view monitorButtonText(MonitorCommand command) {
  static constexpr std::array<std::string_view, kMonitorCommands> kTexts{"&Go", "&Pause", "&Send", "E&xit"};
  return kTexts[indexOf(command)];
}

bool monitorButtonShown(const MonitorState& state, MonitorCommand command) {
  if (command == MonitorCommand::go) return state.monitorStreaming == 0;
  if (command == MonitorCommand::pause) return state.monitorStreaming == 1;
  return true;
}

void showStreaming(MonitorState& state) {
  state.monitorPaused = 0;
  state.monitorStreaming = 1;
  passDefaultOn(state, MonitorCommand::go, MonitorCommand::pause);
}

void showPaused(MonitorState& state) {
  state.monitorPaused = 1;
  state.monitorStreaming = 0;
  passDefaultOn(state, MonitorCommand::pause, MonitorCommand::go);
}

std::optional<MonitorCommand> typeMonitorKey(MonitorState& state, char key) {
  switch (key) {
    case 'G':
    case 'g': return MonitorCommand::go;
    case 'P':
    case 'p': return MonitorCommand::pause;
    case 'S':
    case 's': return MonitorCommand::send;
    case 'X':
    case 'x': return MonitorCommand::exit;
    case '\r':
    case '\n': return static_cast<MonitorCommand>(state.monitorDefaultButton);
    case '\t': nextDefault(state); return std::nullopt;
    default: return std::nullopt;
  }
}

std::string gpsMessageBytes(std::string_view message) { return narrow(message) + "\r\n"; }

std::vector<std::string_view> monitorRows(std::string_view line, std::size_t columns, std::size_t indent) {
  std::vector<std::string_view> rows;
  std::size_t room = std::max<std::size_t>(columns, 1);
  while (line.size() > room) {
    const auto comma = line.rfind(',', room - 1);
    const std::size_t length = comma == std::string_view::npos ? room : comma + 1;
    rows.push_back(line.substr(0, length));
    line.remove_prefix(length);
    room = columns > indent ? columns - indent : 1;
  }
  if (rows.empty() || !line.empty()) rows.push_back(line);
  return rows;
}

MonitorLayout layOutMonitor(int width, int height, int touchHeight) {
  const MonitorUnits& units = height >= width ? kUpright : kLying;
  const double across = width / static_cast<double>(units.width);
  const double down = height / static_cast<double>(units.height);
  const int margin = pixels(kMargin, down);
  const int rise = std::max(pixels(kButtonRise, down), touchHeight + margin);
  const int buttonTop = height - rise;
  // The edit line stands between list and buttons, with what the list leaves free.
  const int listEnd = pixels(kMargin + units.listHeight, down);
  const int editTop = std::min(listEnd + margin, buttonTop - margin - touchHeight);

  MonitorLayout layout;
  layout.scale = std::min(across, down);
  const int left = pixels(kMargin, across);
  const int listWidth = pixels(units.listWidth, across);
  const int summaryHeight = pixels(units.summaryHeight, down);
  layout.summary = {left, margin, listWidth, summaryHeight};
  layout.list = {left, margin + summaryHeight, listWidth, std::max(1, editTop - 2 * margin - summaryHeight)};
  layout.edit = {left, editTop, listWidth, std::max(1, buttonTop - margin - editTop)};
  for (int i = 0; i < kMonitorCommands; ++i) {
    const int place = std::max(0, i - 1);  // "Go" and "Pause" in the same one
    layout.buttons[static_cast<std::size_t>(i)] = {pixels(kMargin + place * (units.buttonWidth + units.gap), across),
                                                   buttonTop, pixels(units.buttonWidth, across), rise - margin};
  }
  return layout;
}

}  // namespace kalmira
