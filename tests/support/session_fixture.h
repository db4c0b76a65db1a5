#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "logging/commands.h"
#include "logging/handlers.h"
#include "logging/session.h"
#include "logging/session_link.h"
#include "support/fake_clock.h"
#include "support/fake_disk.h"
#include "support/temp_folder.h"

namespace kalmira {

// Remembers what a session said, and answers its questions.
class RecordingView final : public SessionView {
 public:
  void show(PanelField field, std::string_view text) override {
    if (text != texts[field]) changes[field].emplace_back(text);
    texts[field] = text;
  }
  void beep(Beep) override { ++beeps; }
  bool ask(Question question, const Message& message) override {
    questions.push_back(message);
    asked.push_back(question);
    return answer;
  }
  void tell(const Message& message) override { told.push_back(message); }
  void addProfilePoint(const ProfilePoint& point) override { points.push_back(point); }
  void redrawProfile() override {}
  void clearProfile() override {}
  void loggingStateChanged() override {}
  void closeDialogs() override { ++dialogsClosed; }
  void loggingLeft() override { left = true; }

  std::map<PanelField, std::string> texts;
  std::map<PanelField, std::vector<std::string>> changes;
  std::vector<Message> questions;
  std::vector<Question> asked;
  std::vector<Message> told;
  std::vector<ProfilePoint> points;
  int beeps = 0;
  int dialogsClosed = 0;
  bool answer = true;
  bool left = false;
};

// Ports without devices; remembers what was done to them, in order.
struct FakePorts final : SessionPorts {
  using Problem = std::optional<PortProblem>;
  std::vector<std::string> calls;
  Problem instrumentProblem;
  bool teskAnswers = true;
  bool gone = false;
  bool gpsIsGone = false;

  bool isSameDevice(int com, int other) const override { return com == other; }
  Problem OpenInstrumentPort() override { return calls.emplace_back("open instrument"), instrumentProblem; }
  bool ProbeTeskRecord(const std::function<bool()>&) override { return calls.emplace_back("probe"), teskAnswers; }
  void startInstrumentReader() override { calls.emplace_back("read instrument"); }
  void closeInstrumentPort() override { calls.emplace_back("close instrument"); }
  bool instrumentGone() const override { return gone; }
  void reopenInstrumentPort() override { calls.emplace_back("reopen instrument"); }
  Problem OpenGpsPort() override { return calls.emplace_back("open gps"), std::nullopt; }
  void startGpsReader() override { calls.emplace_back("read gps"); }
  bool gpsGone() const override { return gpsIsGone; }
  bool markerGone() const override { return false; }
  void lookForAbsentPorts() override {}
  void closeGpsPort() override { calls.emplace_back("close gps"); }
  Problem OpenMarkerPort() override { return calls.emplace_back("open marker"), std::nullopt; }
  void startMarkerReader() override { calls.emplace_back("read marker"); }
  void closeMarkerPort() override { calls.emplace_back("close marker"); }
};

// A session on fakes. begin() starts it and creates a data file in memory; the file's opening records are cut
// off what records() gives.
struct TestSession {
  explicit TestSession(Kind kind, bool ice = false, bool wide = true)
      : session({.kind = kind, .iceChosen = ice, .root = folder.path(), .wideLayout = wide}, settings, link, clock,
                disk, view, [this](const Settings& current) {
                  saved.push_back(current);
                  return std::string{};
                }) {
    session.ports = &ports;
    session.readBattery = [] { return std::optional<int>(87); };
    settings.audio = 0;
  }
  ~TestSession() { session.file.finish(); }

  void begin() {
    ASSERT_EQ(startSession(session), StartOutcome::started);
    const auto outcome = beginDataFile(
        session, [this](const std::string& name) { return std::optional(folder.path() / (name + ".DAT")); });
    ASSERT_EQ(outcome.how, CreateOutcome::How::created) << outcome.cause;
    opening = disk.content().size();
  }
  // The same, and records.
  void go(int mode = kModeAuto) {
    settings.surveyMode = mode;
    begin();
    startRecording(session);
  }
  // What a reader does with a good record that is handed over.
  void record(std::string_view text) {
    std::copy(text.begin(), text.end(), link.recordText.begin());
    link.recordText[text.size()] = '\0';
    link.recordLength = static_cast<int>(text.size());
    link.lastRecordTick = clock.tick();
    link.recordOf = link.recording;
    link.missedTicks = 0;
    OnReading(session);
  }
  // The records written since begin(), without line ends, ticks cut off those of readings and notes.
  std::vector<std::string> records() {
    const auto content = disk.content();
    const auto length = session.file.recordLength();
    std::vector<std::string> out;
    for (auto at = opening; at + length <= content.size(); at += length) {
      out.push_back(content.substr(at, length - 1));
    }
    return out;
  }
  // The reading records alone, their texts.
  std::vector<std::string> readings() {
    std::vector<std::string> out;
    for (const auto& item : records()) {
      if (item[0] == 'T' || item[0] == 't' || (item[0] >= '2' && item[0] <= '6')) {
        out.push_back(item.substr(0, session.file.recordLength() - 12));
      }
    }
    return out;
  }

  TempFolder folder;
  FakeClock clock;
  FakeDisk disk;
  RecordingView view;
  FakePorts ports;
  Settings settings;
  LinkState link;
  std::vector<Settings> saved;
  std::size_t opening = 0;
  Session session;
};

}  // namespace kalmira
