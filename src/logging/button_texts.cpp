#include "logging/button_texts.h"

#include <array>

namespace kalmira {
namespace {

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
