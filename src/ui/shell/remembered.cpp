#include "ui/shell/remembered.h"

#include <fmt/format.h>

#include <QSettings>

#include "link/network_port.h"

#include "ui/screen/theme.h"

namespace kalmira {
namespace {

const QString kKindKey = QStringLiteral("instrument/kind");
const QString kIceKey = QStringLiteral("instrument/ice");
const QString kMirrorKey = QStringLiteral("files/mirror");
const QString kThemeKey = QStringLiteral("screen/theme");

// Only what differs: each change has the whole file written anew, and committed.
void keep(QSettings& store, const QString& key, const QString& value) {
  if (store.value(key).toString() != value || !store.contains(key)) store.setValue(key, value);
}

QString comKey(std::size_t index) { return qtText(fmt::format("com/{}", index + 1)); }

}  // namespace

std::optional<RememberedKind> lastInstrument(const QSettings& store) {
  const auto name = store.value(kKindKey).toString().toStdString();
  const auto* instrument = findInstrumentByName(name);
  if (instrument == nullptr) return std::nullopt;
  const bool ice = instrument->hasIce() && store.value(kIceKey).toString() == "yes";
  return RememberedKind{.kind = instrument->kind, .ice = ice};
}

void rememberKind(QSettings& store, RememberedKind kind) {
  const auto name = instrumentOf(kind.kind).name;
  keep(store, kKindKey, qtText(name));
  keep(store, kIceKey, kind.ice ? "yes" : "no");
}

ComAssignments rememberedComDevices(const QSettings& store) {
  ComAssignments devices;
  for (std::size_t i = 0; i < devices.size(); ++i) {
    const auto path = store.value(comKey(i)).toString().trimmed().toStdString();
    // Anything else is no device: a list, half a line, something typed into the file.
    if (path.starts_with('/') || parseNetworkAddress(path)) devices[i] = path;
  }
  return devices;
}

void rememberComDevices(QSettings& store, const ComAssignments& devices) {
  for (std::size_t i = 0; i < devices.size(); ++i) {
    if (devices[i].empty()) {
      store.remove(comKey(i));
    } else {
      keep(store, comKey(i), qtText(devices[i]));
    }
  }
}

std::filesystem::path rememberedMirror(const QSettings& store) {
  return store.value(kMirrorKey).toString().trimmed().toStdString();
}

void rememberMirror(QSettings& store, const std::filesystem::path& folder) {
  if (folder.empty()) return store.remove(kMirrorKey);
  keep(store, kMirrorKey, qtText(folder.string()));
}

bool rememberedNight(const QSettings& store) { return store.value(kThemeKey).toString() == "night"; }

void rememberNight(QSettings& store, bool night) { keep(store, kThemeKey, night ? "night" : "day"); }

}  // namespace kalmira
