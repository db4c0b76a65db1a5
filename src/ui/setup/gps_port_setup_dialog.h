#pragma once

#include "gps/find_receiver.h"
#include "ui/setup/lists_dialog.h"

namespace kalmira {

struct GpsSetupOutcome {
  enum class How {
    cancelled,  // nothing changes
    saved,      // the settings are to be taken and saved
    monitor,    // the settings are to be taken, not saved, and the receiver's sentences to be shown
  };
  How how = How::cancelled;
  Settings settings;
};

// What "Find" needs to listen to a port.
struct ReceiverAccess {
  std::function<std::string(int comNumber)> deviceOf;  // empty: the number has none
  PortFactory portFactory;                             // without one there is no "Find"
  const Clock* clock = nullptr;
};

// "Set GPS Port". Waits until it is closed; saves nothing by itself, and leaves no port open.
GpsSetupOutcome runGpsPortSetupDialog(QWidget* parent, const Settings& settings, const PortLists& ports,
                                      const ReceiverAccess& access);

}  // namespace kalmira
