#include "platform/power.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <system_error>

#include "platform/files.h"
#include "platform/text.h"

namespace kalmira {
namespace {

namespace fs = std::filesystem;

// A mouse or a headset has a battery too; the kernel gives those the scope "Device".
std::optional<int> systemBatteryPercent(const fs::path& supply) {
  if (firstLineOf(supply / "type") != "Battery" || firstLineOf(supply / "scope") == "Device") return std::nullopt;
  const std::string capacity = firstLineOf(supply / "capacity");
  if (capacity.empty()) return std::nullopt;
  const int percent = parseInt(capacity);
  if (percent < 0 || percent > 100) return std::nullopt;
  return percent;
}

double numberOf(const fs::path& file) { return std::abs(parseReal(firstLineOf(file))); }

// The bus library is loaded only when there is a bus to speak to: linked, it and what it brings along would cost every
// start memory and time, also on machines that have no login service.
struct Bus;
struct Message;
struct BusLibrary {
  void* handle = nullptr;
  int (*openSystem)(Bus**) = nullptr;
  int (*setCallTimeout)(Bus*, std::uint64_t microseconds) = nullptr;
  int (*callMethod)(Bus*, const char* destination, const char* path, const char* interface, const char* member,
                    void* error, Message** reply, const char* types, ...) = nullptr;
  int (*read)(Message*, const char* types, ...) = nullptr;
  Message* (*unrefMessage)(Message*) = nullptr;
  Bus* (*closeBus)(Bus*) = nullptr;
};

template <typename Function>
bool find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  return function != nullptr;
}

bool load(BusLibrary& bus) {
  bus.handle = dlopen("libsystemd.so.0", RTLD_LAZY | RTLD_LOCAL);
  return bus.handle != nullptr && find(bus.handle, "sd_bus_open_system", bus.openSystem) &&
         find(bus.handle, "sd_bus_set_method_call_timeout", bus.setCallTimeout) &&
         find(bus.handle, "sd_bus_call_method", bus.callMethod) && find(bus.handle, "sd_bus_message_read", bus.read) &&
         find(bus.handle, "sd_bus_message_unref", bus.unrefMessage) &&
         find(bus.handle, "sd_bus_flush_close_unref", bus.closeBus);
}

bool systemBusExists() {
  return std::getenv("DBUS_SYSTEM_BUS_ADDRESS") != nullptr || access("/run/dbus/system_bus_socket", R_OK | W_OK) == 0;
}

// A descriptor that holds the lock while it is open, or -1.
int inhibit(const BusLibrary& library, const char* who, const char* what) {
  constexpr std::uint64_t kAnswerMicroseconds = 1'000'000;
  int lock = -1;
  Bus* bus = nullptr;
  Message* reply = nullptr;
  if (library.openSystem(&bus) < 0) return -1;
  library.setCallTimeout(bus, kAnswerMicroseconds);
  int received = -1;
  if (library.callMethod(bus, "org.freedesktop.login1", "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                         "Inhibit", nullptr, &reply, "ssss", what, who, "A survey is being logged", "block") >= 0 &&
      library.read(reply, "h", &received) > 0) {
    // The message owns the descriptor it brought.
    lock = fcntl(received, F_DUPFD_CLOEXEC, 3);
  }
  if (reply != nullptr) library.unrefMessage(reply);
  library.closeBus(bus);
  return lock;
}

}  // namespace

std::optional<int> batteryPercent(const fs::path& powerSupplies) {
  int sum = 0;
  int count = 0;
  std::error_code error;
  for (fs::directory_iterator it(powerSupplies, error), end; !error && it != end; it.increment(error)) {
    if (const auto percent = systemBatteryPercent(it->path())) {
      sum += *percent;
      ++count;
    }
  }
  if (count == 0) return std::nullopt;
  return (sum + count / 2) / count;
}

// Energy in microwatt hours by power in microwatts, or charge by current, whichever the driver counts in.
std::optional<double> batteryHours(const fs::path& powerSupplies) {
  double stored = 0;
  double drawn = 0;
  bool charged = false;
  std::error_code error;
  for (fs::directory_iterator it(powerSupplies, error), end; !error && it != end; it.increment(error)) {
    if (!systemBatteryPercent(it->path())) continue;
    const bool energy = fs::exists(it->path() / "energy_now", error);
    stored += numberOf(it->path() / (energy ? "energy_now" : "charge_now"));
    drawn += numberOf(it->path() / (energy ? "power_now" : "current_now"));
    charged = charged || firstLineOf(it->path() / "status") == "Charging";
  }
  if (charged || stored <= 0 || drawn <= 0) return std::nullopt;
  return stored / drawn;
}

bool IdleInhibitor::renew() {
  int lock = -1;
  int lidLock = -1;
  if (systemBusExists()) {
    BusLibrary library;
    if (load(library)) {
      lock = inhibit(library, who_.c_str(), "idle:sleep");
      lidLock = inhibit(library, who_.c_str(), "handle-lid-switch");
    }
    // Not needed for another minute; loaded, it would only hold memory.
    if (library.handle != nullptr) dlclose(library.handle);
  }
  letGo();
  lock_ = lock;
  lid_lock_ = lidLock;
  return lock_ >= 0;
}

void IdleInhibitor::letGo() {
  if (lock_ >= 0) close(lock_);
  if (lid_lock_ >= 0) close(lid_lock_);
}

IdleInhibitor::~IdleInhibitor() { letGo(); }

}  // namespace kalmira
