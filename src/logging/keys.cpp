#include "logging/keys.h"

#include <array>
#include <cctype>

namespace kalmira {
namespace {

// pauseKey of the settings.
constexpr int kPauseAnyKey = 0;
constexpr int kPauseSpace = 1;
constexpr int kPauseEnter = 2;
constexpr int kPauseS = 3;

bool isMarkDigit(int keyCode) { return keyCode >= '1' && keyCode <= '9'; }
bool isArrow(int keyCode) { return keyCode >= key::kLeft && keyCode <= key::kDown; }
bool isTesk2(const Session& session) { return session.instrument.hasMarker; }
int pauseKeyOf(const Session& session) { return indexOr(session.settings.pauseKey, 4, kPauseAnyKey); }

void pressMarker(Session& session) {
  if (session.link.markerKeyPending == 0) session.link.markerKeyPending = 1;
}

// State 0: what is left of the keys once a TESK2's row has been told from the others'.
int letterWithoutFile(const Session& session, int letter) {
  switch (letter) {
    case 'C': return 0;
    case 'N': return 2;
    case 'M':
    case 'X': return 4;
    case 'U': return 1;
    case 'A': return isTesk2(session) ? 1 : kNoCode;
    case 'E': return isTesk2(session) ? 2 : kNoCode;
    default: return kNoCode;
  }
}

int letterStandingBy(int letter) {
  switch (letter) {
    case 'G': return 0;
    case 'L': return 1;
    case 'N': return 2;
    case 'C': return 3;
    case 'M': return 4;
    case 'X': return 5;
    default: return kNoCode;
  }
}

// The numeric keypads' way to start: only while the focus is on the first button.
int keypadStart(const Session& session, const Focus& focus, int keyCode) {
  if (session.loggingState != kStandBy || focus.focusIndex != focus.firstFocusIndex) return kNoCode;
  const int pauseKey = pauseKeyOf(session);
  if (keyCode == '0') return pauseKey == kPauseSpace || pauseKey == kPauseS ? 0 : kNoCode;
  if (keyCode == key::kMinus || keyCode == key::kPeriod) return pauseKey == kPauseSpace ? 0 : kNoCode;
  return kNoCode;
}

// A TESK2 without a file has four buttons; the middle ones are menu commands and the last one leaves.
int remapTesk2(const Session& session, int code) {
  if (!isTesk2(session) || session.loggingState != kNoFile) return code;
  switch (code) {
    case 1: return kMenuCalibrate;
    case 2: return kMenuDeleteCalibration;
    case 3: return 1;
    default: return code;
  }
}

bool pauses(const Session& session, int keyCode) {
  switch (pauseKeyOf(session)) {
    case kPauseSpace: return keyCode == key::kMinus || keyCode == key::kPeriod || keyCode == '0';
    case kPauseEnter: return keyCode == key::kEnter;
    case kPauseS: return keyCode == '0';
    default: return !(isTesk2(session) && isMarkDigit(keyCode));
  }
}

bool focusMoves(const Session& session, const KeyContext& context) {
  return isTesk2(session) && session.setup.wideLayout && context.keypadEntry;
}

int keyWhileLogging(Session& session, const KeyContext& context, int keyCode) {
  const bool arrowMarks = !context.digitsPlatform && isArrow(keyCode) && focusMoves(session, context);
  const bool digitMarks = (context.digitsPlatform || context.keypadEntry) && isMarkDigit(keyCode);
  if (arrowMarks || digitMarks) pressMarker(session);
  if (pauses(session, keyCode)) return 0;
  return keyCode == 'F' || keyCode == 'f' ? kFit : kNoCode;
}

// The first key after a release only arms the movement; the next one moves.
void moveFocus(Session& session, Focus& focus, int step) {
  if (session.link.markerKeyPending == 0) {
    session.link.markerKeyPending = 1;
    return;
  }
  const int span = focus.buttonCount - focus.firstFocusIndex;
  if (span <= 0) return;
  focus.focusIndex = focus.firstFocusIndex + (focus.focusIndex - focus.firstFocusIndex + step + span) % span;
}

constexpr std::size_t kPauseKeys = 4;
using Prompts = std::array<std::string_view, 2 * kPauseKeys>;  // the second half is for Manual mode

constexpr Prompts kFull{"TAP ME or press any key to Pause",
                        "TAP ME or press SPACE bar to Pause",
                        "TAP ME or press ENTER key to Pause",
                        "TAP ME or press key S to Pause",
                        "Trigger to Log, Tap/any key to Pause",
                        "Trigger to Log, Tap or press SPACE bar to Pause",
                        "Trigger to Log, Tap or press ENTER key to Pause",
                        "Trigger to Log, Tap or press key S to Pause"};

constexpr Prompts withTexts(Prompts prompts, std::size_t first, std::size_t step,
                            std::initializer_list<std::string_view> texts) {
  for (const auto text : texts) {
    prompts[first] = text;
    first += step;
  }
  return prompts;
}

constexpr Prompts kNarrow = withTexts(
    kFull, 5, 1,
    {"Trigger to Log, Tap/SPACE to Pause", "Trigger to Log, Tap/ENTER to Pause", "Trigger to Log, Tap/<S> to Pause"});
constexpr Prompts kTesk2 =
    withTexts(kFull, 0, kPauseKeys,
              {"TAP ME or any non numeric key to Pause", "Trigger to Log, Tap or non numeric key to Pause"});
constexpr Prompts kNumeric{"TAP or non numeric or <0> to Pause",
                           "TAP or <->, <0> or <.> to Pause",
                           "TAP ME or press ENTER key to Pause",
                           "TAP ME or press key <0> to Pause",
                           "Trigger to Log, Tap or press any non numeric key to Pause",
                           "Trigger to Log, Tap/SPACE to Pause",
                           "Trigger to Log, Tap/ENTER to Pause",
                           "Trigger to Log, Tap or press key S to Pause"};

const Prompts& promptsOf(Keypad keypad) {
  switch (keypad) {
    case Keypad::narrow: return kNarrow;
    case Keypad::tesk2: return kTesk2;
    case Keypad::numeric: return kNumeric;
    case Keypad::full: break;
  }
  return kFull;
}

}  // namespace

int codeOfButton(const Session& session, int index) {
  // Every button of the Logging row pauses.
  if (session.loggingState == kLogging) return 0;
  return remapTesk2(session, index);
}

int codeOfKey(Session& session, Focus& focus, const KeyContext& context, int keyCode) {
  if (!session.inputEnabled) return kNoCode;
  if (session.loggingState == kLogging) return keyWhileLogging(session, context, keyCode);
  if (keyCode == key::kEnter) return remapTesk2(session, focus.focusIndex);
  if (focusMoves(session, context) && (isArrow(keyCode) || keyCode == key::kTab)) {
    moveFocus(session, focus, keyCode == key::kLeft || keyCode == key::kUp ? -1 : 1);
    return kNoCode;
  }
  if (isMarkDigit(keyCode)) {
    if (context.keypadEntry) pressMarker(session);
    return kNoCode;
  }
  if (const int start = keypadStart(session, focus, keyCode); start != kNoCode) return start;
  const bool letter = (keyCode >= 'A' && keyCode <= 'Z') || (keyCode >= 'a' && keyCode <= 'z');
  if (!letter) return kNoCode;
  const int capital = std::toupper(keyCode);
  if (capital == 'F') return kFit;
  return session.loggingState == kStandBy ? letterStandingBy(capital)
                                          : remapTesk2(session, letterWithoutFile(session, capital));
}

void keyReleased(Session& session, const KeyContext& context, int keyCode) {
  const bool marks = isArrow(keyCode) || isMarkDigit(keyCode);
  if (session.inputEnabled && marks && context.keypadEntry && session.link.markerKeyPending == 1) {
    session.link.markerKeyPending = 0;
  }
}

std::optional<Command> commandOf(const Session& session, int code) {
  switch (code) {
    case 101: return Command::scale;
    case 102: return Command::displayOptions;
    case 103: return Command::repaint;
    case kMenuCalibrate: return Command::calibrate;
    case kMenuDeleteCalibration: return Command::deleteCalibration;
    case kFit: return Command::fit;
    default: break;
  }
  if (code < 0 || code > 5) return std::nullopt;
  if (session.loggingState == kLogging) return code == 0 ? std::optional(Command::pause) : std::nullopt;
  using enum Command;
  static constexpr std::array kNoFileCodes{createFile, leave, newStation, comment, leave, leave};
  static constexpr std::array kStandByCodes{start, newLine, newStation, comment, menu, leave};
  const auto index = static_cast<std::size_t>(code);
  return session.loggingState == kNoFile ? kNoFileCodes[index] : kStandByCodes[index];
}

int menuCommandOf(int menuIdentifier) {
  if (menuIdentifier >= 1101 && menuIdentifier <= 1106) return menuIdentifier - 1000;
  if (menuIdentifier == 1111) return kMenuCalibrate;
  if (menuIdentifier == 1112) return kMenuDeleteCalibration;
  return kNoCode;
}

KeyContext keyContextOf(const Session& session) {
  const bool marks = session.instrument.hasMarker;
  return {.keypadEntry = marks && session.settings.softMarker == 1,
          .digitsPlatform = marks && session.setup.portrait && session.setup.storageClass == 1};
}

Keypad keypadOf(const Session& session, const KeyContext& context) {
  if (context.digitsPlatform) return Keypad::numeric;
  if (session.instrument.hasMarker) return Keypad::tesk2;
  return session.setup.smallScreen && session.setup.portrait ? Keypad::narrow : Keypad::full;
}

std::string_view pausePrompt(Keypad keypad, int pauseKey, bool manual) {
  const auto key = static_cast<std::size_t>(indexOr(pauseKey, static_cast<int>(kPauseKeys), 0));
  return promptsOf(keypad)[key + (manual ? kPauseKeys : 0)];
}

std::vector<std::string_view> buttonTexts(const Session& session, const KeyContext& context) {
  if (session.loggingState == kLogging) {
    return {pausePrompt(keypadOf(session, context), session.settings.pauseKey, session.surveyMode() == kModeManual)};
  }
  if (session.loggingState == kStandBy) return {"&Go", "&Line", "&NStn", "&Cmnt", "&Menu", "E&xit"};
  if (!session.instrument.calibrated) return {"&Create File", "E&xit"};
  if (session.setup.smallScreen) return {"&Cr. File", "C&alib.", "D&el Cal.", "E&xit"};
  return {"&Create File", "C&alibrate", "D&el Calibr.", "E&xit"};
}

}  // namespace kalmira
