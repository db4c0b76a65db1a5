#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "instruments/panel_fields.h"
#include "instruments/reading.h"

// How a session speaks to whoever shows it: the logging window, kalmira-log, the tests' recorder. Every member is
// called on the session's thread, in the middle of what the session is doing; a question may let other messages of the
// session be handled before it is answered.
namespace kalmira {

// What has happened, for a sound of its own.
enum class Beep { reading, calibration, alarm, linkLost };
enum class Icon { none, information, question, exclamation, stop };

struct Message {
  std::string title;
  std::string text;  // lines end with CR LF where they are fixed so
  Icon icon = Icon::none;
};

// The questions a session asks, for those who answer without reading.
enum class Question { linkLost, exitLogging, startCalibration, deleteCalibration };

// One recorded reading for the profile.
struct ProfilePoint {
  bool newStation = false;  // the profile moves on before this point is drawn
  Channels channels;
  float extra1 = 0;  // TESK2: the auxiliary values
  float extra2 = 0;
};
inline ProfilePoint profilePointOf(const Reading& reading) {
  return {.channels = reading.channels, .extra1 = reading.auxiliary[0], .extra2 = reading.auxiliary[1]};
}

class SessionView {
 public:
  SessionView() = default;
  SessionView(const SessionView&) = delete;
  SessionView& operator=(const SessionView&) = delete;
  virtual ~SessionView() = default;

  virtual void show(PanelField field, std::string_view text) = 0;
  virtual void beep(Beep sound) = 0;
  virtual bool ask(Question question, const Message& message) = 0;  // true: yes
  virtual void tell(const Message& message) = 0;                    // returns when it has been read
  virtual void addProfilePoint(const ProfilePoint& point) = 0;
  virtual void redrawProfile() = 0;                                 // from the data file
  virtual void clearProfile() = 0;                                  // a new line begins
  virtual void loggingStateChanged() = 0;                           // another row of buttons
  virtual void closeDialogs() = 0;                                  // any session dialog that is open, as if cancelled
  virtual void loggingLeft() = 0;                                   // the session is over
  virtual void fileMoved(const std::filesystem::path& /*path*/) {}  // the survey goes on in another file
};

}  // namespace kalmira
