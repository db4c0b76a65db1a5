#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "datafile/creation.h"
#include "datafile/data_file.h"
#include "datafile/mirror.h"
#include "datafile/reading_context.h"
#include "datafile/record_writers.h"
#include "datafile/survey_notes.h"
#include "gps/nmea.h"
#include "instruments/catalogue.h"
#include "instruments/ice_model.h"
#include "instruments/profile_map.h"
#include "link/readers.h"
#include "logging/session_ports.h"
#include "logging/session_view.h"
#include "platform/clock.h"
#include "platform/file_writer.h"
#include "settings/settings.h"

namespace kalmira {

// What was chosen when the program started and stays.
struct SessionSetup {
  Kind kind = Kind::orla;
  bool iceChosen = false;         // ORLA started for ice work
  bool teskRangeTimes10 = false;  // TESK: the instrument's ranges are ten times as large
  int storageClass = kDefaultStorageClass;
  std::filesystem::path root;
  std::filesystem::path mirror{};    // folder of the second copy; empty: none
  std::vector<std::string> notes{};  // "FIELD=VALUE", beyond the operator's last notes; setNote takes them all
  bool portrait = true;
  bool smallScreen = false;
  bool wideLayout = true;  // the panel spans the width: long texts with units
  bool units = false;      // values have their units in the other layout, too: the window is larger than it
};

inline constexpr int kNoFile = 0;
inline constexpr int kStandBy = -1;
inline constexpr int kLogging = 1;

// Samples being averaged in Manual mode. The sums live on across a pause.
struct Averaging {
  int sampleCount = 0;
  std::array<float, 4> valueSums{};  // conductivity and inphase, of a TESK2 of both coils
  std::array<float, 6> fieldSums{};  // of the record's own numbers
};

// The TESK2's calibration, see calibration.h.
struct Calibration {
  int calibrationPhase = 0;   // -1 while one runs
  int calibrationActive = 0;  // 1 vertical stage, 2 horizontal stage and closing
  int calibrationStep = 0;    // of the horizontal stage
  std::uint32_t calibrationTick = 0;
  int calibrationCount = 0;
  // Sums, later averages, in the order inphase 1, inphase 2, conductivity 1, conductivity 2.
  std::array<float, 4> vertical{};
  std::array<float, 4> horizontal{};
  std::array<float, 6> calibrationBackup{};
  std::array<float, 6> deletedCalibration{};
};

// The watch timer: when it runs, the session wants onTimer called `period` milliseconds after `since`.
struct WatchTimer {
  bool running = false;
  std::uint32_t since = 0;
};

// All run-time state of one logging session. Everything but `link` belongs to the session's thread.
struct Session {
  // Everything handed in outlives the session. `save` writes the settings file: an empty text, or why not.
  Session(SessionSetup setupOfRun, Settings& settingsRecord, LinkState& linkState, const Clock& clockOfRun,
          Disk& diskOfRun, SessionView& viewOfRun, std::function<std::string(const Settings&)> save);

  SessionSetup setup;  // its layout fields follow the window when it is turned
  const Instrument& instrument;
  Settings& settings;
  LinkState& link;
  const Clock& clock;
  Disk& disk;
  SessionView& view;
  SessionPorts* ports = nullptr;  // set before the session begins
  std::function<std::string(const Settings&)> saveSettings;
  // Whether the program is to end: what waits for an instrument looks at it.
  std::function<bool()> interrupted = [] { return false; };
  std::function<std::optional<int>()> readBattery;  // percent; the machine's own battery
  std::function<std::optional<double>()> readBatteryHours;
  DataFile file;
  Mirror mirror;
  // Why the survey is not whole, or not where it should be: what was told already, for its end.
  std::vector<std::string> shortfalls;
  std::vector<std::string> remarks;  // likewise said at its end, of a survey that is whole
  struct FileGuard {
    std::filesystem::path name{};  // the first file's, once the survey went on in another
    bool lengthenedTold = false;
    bool movedFromFailing = false;
    int servicesToTry = 0;  // until the next try to find another place for the survey
    int tries = 0;
  } guard;

  // The notes beside the data file, see notes.h.
  struct Notes {
    SurveyNotes survey{};
    std::unique_ptr<FileWriter> writer{};  // as long as there is a data file
    std::string problem{};                 // with the operator's last ones, to be told
    bool writingTold = false;
    struct Undated {
      std::int64_t difference_ms = 0;
      std::uint32_t tick = 0;
    };
    std::optional<Undated> undated{};  // difference of the clocks from a fix whose day is guessed
  } notes;

  // Taken from the settings when the session begins, see takeSettings.
  int triggerMode = kModeAuto;
  int recordInterval = 1;  // instrument records per logged reading in Auto mode
  int beepInterval = 1;
  bool averageOnTrigger = false;
  int samplesPerAverage = 1;
  int readingsPerStation = 1;
  std::uint32_t connectionTimeoutMs = 1000;
  bool iceOption = false;
  IceModel iceModel;
  ReadingDecoder recorded{Header1{}};  // of the readings that go into the file

  int loggingState = kNoFile;
  bool sessionActive = false;
  bool linkActive = false;
  bool linkLost = false;
  bool instrumentOpen = false;  // false: the port could not be opened again after the link was lost
  bool inputEnabled = false;
  WatchTimer timer;

  double station = 0;
  int stationReadingCount = 0;
  bool lineStarted = false;
  int triggerLatch = 0;
  int beepCounter = 0;
  Averaging averaging;
  Calibration calibration;
  std::uint32_t lastBatteryTick = 0;

  // The profile's own bookkeeping, which commands and the watchdog reset.
  int chartPointCount = 0;
  std::array<int, kProfilePoints> traceStarted{};

  HeldSentences held;
  bool readingLogged = false;
  bool gpsHeldWritten = false;
  int gpsRecordCount = 0;
  bool gpsSpin = false;
  // What is known of the receiver, see gps_watch.h.
  struct GpsWatch {
    bool gone = false;
    bool silent = false;
    bool fixBlank = false;  // what the silence leaves of the panel has been cleared
    bool allBlank = false;
    bool everGood = false;
    bool everFixed = false;
    std::uint32_t goodTick = 0;      // of the last sentence with a right checksum
    std::uint32_t lastGoodTick = 0;  // the same, later where a receiver that is back gets its time to speak
    std::uint32_t lastLineTick = 0;
    struct Noise {
      double room = 0;  // bytes that may be recorded now
      std::uint32_t tick = 0;
      std::uint64_t leftOut = 0;  // lines
      std::uint64_t told = 0;
      std::uint32_t toldTick = 0;
    } noise;
    std::string fix;  // its word; empty while none is known
    std::string fixTold;
    std::uint32_t fixToldTick = 0;
  } gps;
  // What is known of the survey's safety, see saving.h.
  struct Saving {
    std::uint64_t readings = 0;  // in the file when no record waited, the last time that was looked
    std::uint64_t bytes = 0;     // recorded, then
    std::uint64_t written = 0;   // bytes of the file, then
    std::uint32_t lookTick = 0;
    std::uint32_t writeTick = 0;     // the file has grown
    double loggedMs = 0;             // of the time of which the rate is taken
    double loggedBytes = 0;          // recorded in it
    std::uint32_t suppliesTick = 0;  // when room and battery were looked at
    std::optional<std::uint64_t> freeBytes;
    std::optional<int> batteryPercent;
    std::optional<double> batteryHours;
  } saving;
  std::uint32_t portsLookedForTick = 0;
  float periodOfRates = 0;    // the record period that the rates were taken for
  std::uint64_t sleptMs = 0;  // how long the machine has slept, when that was last looked at
  std::string message;        // what stands in the message line
  bool fileTrouble = false;   // it says why records wait
  bool pleaseWait = false;    // it asks to wait for the instrument, silent since pleaseWaitTick
  std::uint32_t pleaseWaitTick = 0;

  // What was recorded, for the closing summary.
  struct Counts {
    std::uint64_t readings = 0;
    std::uint64_t gpsSentences = 0;
    std::uint64_t events = 0;
  } counts;

  // The survey mode as set up; triggerMode follows it but for the samples of an average.
  int surveyMode() const { return surveyModeOf(settings); }
  bool gpsEnabled() const { return settings.gpsInput == 1; }
  WriterContext writer() {
    return {.file = file,
            .settings = settings,
            .instrument = instrument,
            .clock = clock,
            .iceOption = iceOption,
            .storageClass = setup.storageClass,
            .portrait = setup.portrait,
            .calibrationFactors = factorsThatHold(),
            .deletedCalibration = calibration.deletedCalibration};
  }
  // The settings' factors are zero while a calibration measures, and may be put back; files hold neither.
  const std::array<float, 6>& factorsThatHold() const {
    const bool measuring = calibration.calibrationPhase == -1 && calibration.calibrationStep != 3;
    return measuring ? calibration.calibrationBackup : settings.calibrationFactors;
  }
};

// Copies what a session takes from the settings and clears its counters: at the session's begin, and again when the
// operator has changed the display options.
void takeSettings(Session& session);

// The kind's record period gives the rates; a TESK's period is known only after its probe.
void takeRecordRates(Session& session);

// For a live record.
DecodeOptions decodeOptionsOf(const Session& session);

// A number of the panel: "%-11.2f".
std::string stationText(double station);

void clearTraces(Session& session);

// Puts a text into the message line; an empty one clears it.
void showMessage(Session& session, std::string_view text);

// The handheld's own battery, now.
void showBattery(Session& session);
// The same, when the last display is more than three minutes old.
void showBatteryWhenDue(Session& session);

// An event record: "$STARTED", "$PAUSED", ...
void writeEvent(Session& session, std::string_view text);

// Saves the settings file and tells the operator when that failed.
void saveSettingsOrTell(Session& session);

// Looks after the data file (what waits is written, trouble and its end are shown) and calls the watchdog when its
// period is over. Called whenever msUntilService says.
void serviceSession(Session& session);
std::uint32_t msUntilService(const Session& session);

}  // namespace kalmira
