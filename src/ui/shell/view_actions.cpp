#include "ui/shell/view_actions.h"

#include "platform/paths.h"
#include "settings/settings_file.h"

namespace kalmira {

void ViewActions::viewFiles(QWidget* parent, const std::filesystem::path& file) {
  viewer_ = new ViewFilesWnd(
      {.place = {.kind = host_.instrument().kind, .storageClass = host_.storageClass, .root = host_.root},
       .extract = {.teskRangeTimes10 = host_.teskRangeTimes10},
       .settingsFor = [this](Kind kind, bool ice) { return settingsFor(kind, ice); },
       .takeSettings = [this](Kind kind, bool ice,
                              const Settings& changed) { takeSettings(kind, ice, changed); },
       .onLeft = [this] { uncover(viewer_); }},
      host_.theme(), parent);
  viewer_->open();
  host_.cover(viewer_);
  if (!file.empty()) viewer_->openFile(file);
}

void ViewActions::showFonts(QWidget* parent) {
  fonts_ = new FontWnd([this] { uncover(fonts_); }, host_.theme(), parent);
  fonts_->open();
  host_.cover(fonts_);
}

void ViewActions::uncover(QWidget* window) {
  host_.cover(nullptr);
  window->deleteLater();
}

bool ViewActions::isInUse(Kind kind, bool ice) const {
  const auto used = host_.instrument();
  return used.kind == kind && used.ice == ice;
}

// Another instrument's file is shown as that instrument's own settings have it, where there are any. Nothing
// is made for an instrument that is only looked at.
Settings ViewActions::settingsFor(Kind kind, bool ice) const {
  if (isInUse(kind, ice)) return host_.settings();
  Settings settings;
  const auto file = settingsFileOf(
      {.kind = kind, .iceOption = ice, .storageClass = host_.storageClass, .root = host_.root});
  if (const auto text = readSmallFile(file)) parseSettings(*text, kind, ice, settings);
  return settings;
}

// Another instrument's scales hold as long as its file is shown.
void ViewActions::takeSettings(Kind kind, bool ice, const Settings& changed) {
  if (!isInUse(kind, ice)) return;
  host_.settings() = changed;
  host_.saveSettings(changed);
}

}  // namespace kalmira
