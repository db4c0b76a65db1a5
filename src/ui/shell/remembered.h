#pragma once

#include <filesystem>
#include <optional>

#include "instruments/catalogue.h"
#include "link/com_devices.h"

class QSettings;

// What the program remembers between runs besides the survey settings: the instrument last used, devices behind COM
// numbers, the theme.
namespace kalmira {

struct RememberedKind {
  Kind kind = Kind::orla;
  bool ice = false;
};
std::optional<RememberedKind> lastInstrument(const QSettings& store);
void rememberKind(QSettings& store, RememberedKind kind);

ComAssignments rememberedComDevices(const QSettings& store);
void rememberComDevices(QSettings& store, const ComAssignments& devices);

// Folder of the second copy; empty: none.
std::filesystem::path rememberedMirror(const QSettings& store);
void rememberMirror(QSettings& store, const std::filesystem::path& folder);

bool rememberedNight(const QSettings& store);
void rememberNight(QSettings& store, bool night);

}  // namespace kalmira
