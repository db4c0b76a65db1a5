#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The GPS monitor as far as it needs no screen: which button does what, which keys press them, where everything stands.
namespace kalmira {

// In the order of the buttons, which Tab goes through.
enum class MonitorCommand { go, pause, send, exit };
inline constexpr int kMonitorCommands = 4;
std::string_view monitorButtonText(MonitorCommand command);

// "Go" and "Pause" share one place: whichever would change something is there.
struct MonitorState {
  int monitorPaused = 0;         // 1 while the reader waits
  int monitorStreaming = 1;      // 1 after "Go", 0 after "Pause"
  int monitorDefaultButton = 1;  // 0 to 3, a MonitorCommand: what Enter presses
};

bool monitorButtonShown(const MonitorState& state, MonitorCommand command);
// After "Go", and after a message has been sent; after "Pause". A default button that gives its place to the other
// takes it along, for Enter never presses what is not to be seen.
void showStreaming(MonitorState& state);
void showPaused(MonitorState& state);

// The command of a typed character, if it has one. Tab has none, but moves the default button on.
std::optional<MonitorCommand> typeMonitorKey(MonitorState& state, char key);

// What the edit line proposes: asks some receivers for the satellites in view.
inline constexpr std::string_view kInitialGpsMessage = "$PASHS,NME,SAT,A,ON";
inline constexpr int kMostMessageCharacters = 255;
// What goes out for a message (UTF-8): one byte a character, then CR and LF.
std::string gpsMessageBytes(std::string_view message);

inline constexpr std::size_t kMostMonitorLines = 2000;

// A line in rows of at most `columns` characters, with nothing left out: broken behind a comma where there is one, else
// anywhere. Rows from the second on are `indent` characters shorter. At least one row.
std::vector<std::string_view> monitorRows(std::string_view line, std::size_t columns, std::size_t indent);

struct MonitorBox {
  int left = 0, top = 0, width = 0, height = 0;  // pixels
};
struct MonitorLayout {
  MonitorBox summary;  // of the fix
  MonitorBox list;
  MonitorBox edit;
  std::array<MonitorBox, kMonitorCommands> buttons;
  double scale = 1.0;  // pixels a unit, for fonts
};
// For a window of that size: upright 240 x 320 units, lying 320 x 240. The list gives up what the summary above it
// takes, and what the edit line and the buttons need to be `touchHeight` pixels high.
MonitorLayout layOutMonitor(int width, int height, int touchHeight);

}  // namespace kalmira
