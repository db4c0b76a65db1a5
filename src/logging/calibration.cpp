#include "logging/calibration.h"

#include "logging/panel.h"

namespace kalmira {
namespace {

void beepThrice(Session& session) {
  for (int i = 0; i < 3; ++i) session.view.beep(Beep::calibration);
}

void showText(Session& session, std::string_view text) { session.view.show(PanelField::calibration, text); }

std::uint32_t sinceTick(const Session& session) {
  return ticksSince(session.clock.tick(), session.calibration.calibrationTick);
}

void enterStep(Session& session, int step) {
  session.calibration.calibrationStep = step;
  session.calibration.calibrationTick = session.clock.tick();
}

void addReading(Calibration& calibration, std::array<float, 4>& sums, const Reading& reading) {
  ++calibration.calibrationCount;
  sums[0] += reading.inphase;
  sums[1] += reading.inphase2;
  sums[2] += reading.conductivity;
  sums[3] += reading.conductivity2;
}

void toAverages(std::array<float, 4>& sums, int count) {
  for (auto& sum : sums) sum /= static_cast<float>(count);
}

void showMeasuring(Session& session, std::string_view title, const Reading& reading) {
  showText(session, title);
  showValues(session, reading, true);
}

void verticalStage(Session& session, const Reading& reading) {
  auto& calibration = session.calibration;
  if (sinceTick(session) <= kCalibrationStageMs) {
    if (reading.orientation == 'V') addReading(calibration, calibration.vertical, reading);
    showMeasuring(session, "Vertical Calibration", reading);
    return;
  }
  calibration.calibrationActive = 2;
  if (calibration.calibrationCount < kCalibrationReadings) return enterStep(session, calibration_step::kVerticalFailed);
  toAverages(calibration.vertical, calibration.calibrationCount);
  session.settings.calibrationFactors[0] = calibration.vertical[0];
  session.settings.calibrationFactors[1] = calibration.vertical[1];
  showText(session, session.setup.wideLayout ? "Rotate to Horiz. Mode within 60 s"
                                             : "Rotate to Horizontal Mode within 60 seconds");
  beepThrice(session);
  enterStep(session, calibration_step::kWaitForHorizontal);
}

void completeWith(Session& session) {
  auto& calibration = session.calibration;
  auto& factors = session.settings.calibrationFactors;
  toAverages(calibration.horizontal, calibration.calibrationCount);
  factors[2] = calibration.horizontal[0];
  factors[3] = calibration.horizontal[1];
  factors[4] = calibration.vertical[2] - 2.0F * calibration.horizontal[2];
  factors[5] = calibration.vertical[3] - 2.0F * calibration.horizontal[3];
  calibration.deletedCalibration = calibration.calibrationBackup;
  enterStep(session, calibration_step::kCompleted);
  saveSettingsOrTell(session);
  if (session.file.isOpen()) WriteCalibrationRecords(session.writer());
}

void measureHorizontal(Session& session, const Reading& reading) {
  auto& calibration = session.calibration;
  if (sinceTick(session) <= kCalibrationStageMs) {
    if (reading.orientation == 'H') addReading(calibration, calibration.horizontal, reading);
    showMeasuring(session, "Horizontal Calibration", reading);
  } else if (calibration.calibrationCount < kCalibrationReadings) {
    enterStep(session, calibration_step::kHorizontalFailed);
  } else {
    completeWith(session);
  }
}

void endCalibration(Session& session) {
  session.calibration.calibrationActive = 0;
  session.calibration.calibrationPhase = 0;
  session.calibration.calibrationStep = 0;
  showText(session, "");
  paintPanel(session);
}

void closeWithSuccess(Session& session) {
  if (sinceTick(session) <= kCalibrationClosingMs) {
    showText(session, "Calibration Completed - Wait for Beep");
    return beepThrice(session);
  }
  endCalibration(session);
  beepThrice(session);
}

std::string_view failureText(int step, bool wide) {
  switch (step) {
    case calibration_step::kVerticalFailed:
      return wide ? "Vert. Mode Failed - Wait for Beep" : "Vertical Mode Failed - Wait for Beep";
    case calibration_step::kHorizontalFailed:
      return wide ? "Hor. Mode Failed - Wait for Beep" : "Horizontal Mode Failed - Wait for Beep";
    default: return wide ? "Hor. Mode Not Detected - Wait for Beep" : "Horizontal Mode Not Detected - Wait for Beep";
  }
}

void closeWithFailure(Session& session) {
  if (sinceTick(session) <= kCalibrationClosingMs) {
    return showText(session, failureText(session.calibration.calibrationStep, session.setup.wideLayout));
  }
  session.settings.calibrationFactors = session.calibration.calibrationBackup;
  endCalibration(session);
}

void horizontalStage(Session& session, const Reading& reading) {
  auto& calibration = session.calibration;
  switch (calibration.calibrationStep) {
    case calibration_step::kWaitForHorizontal:
      if (reading.orientation == 'H') return enterStep(session, calibration_step::kPreparing);
      if (sinceTick(session) > kCalibrationRotationMs) enterStep(session, calibration_step::kNotDetected);
      return;
    case calibration_step::kPreparing:
      if (sinceTick(session) <= kCalibrationPreparationMs) {
        return showText(session, "Preparing for Horizontal Calibration");
      }
      calibration.calibrationCount = 0;
      return enterStep(session, calibration_step::kMeasuring);
    case calibration_step::kMeasuring: return measureHorizontal(session, reading);
    case calibration_step::kCompleted: return closeWithSuccess(session);
    default: return closeWithFailure(session);
  }
}

}  // namespace

bool startCalibration(Session& session) {
  auto& calibration = session.calibration;
  auto& factors = session.settings.calibrationFactors;
  calibration.calibrationBackup = factors;
  factors.fill(0.0F);
  const Message question{
      .title = "CALIBRATION",
      .text = "Place  TESK-2  on  Monopod\r\nin  Vertical  Dipole  Mode\r\nand  press  YES  when  ready\r\n",
      .icon = Icon::information};
  if (!session.view.ask(Question::startCalibration, question)) {
    factors = calibration.calibrationBackup;
    calibration.calibrationStep = 0;
    calibration.calibrationPhase = 0;
    return false;
  }
  calibration.calibrationActive = 1;
  calibration.vertical.fill(0.0F);
  calibration.horizontal.fill(0.0F);
  calibration.calibrationCount = 0;
  calibration.calibrationStep = 0;
  calibration.calibrationTick = session.clock.tick();
  calibration.calibrationPhase = -1;
  return true;
}

bool deleteCalibration(Session& session) {
  const Message question{.title = "Delete Calibration",
                         .text =
                             "Are you sure you want to\r\ndelete Calibration factors ?\r\npress  YES  or  "
                             "NO\r\n",
                         .icon = Icon::exclamation};
  if (!session.view.ask(Question::deleteCalibration, question)) return false;
  session.calibration.deletedCalibration = session.settings.calibrationFactors;
  session.settings.calibrationFactors.fill(0.0F);
  saveSettingsOrTell(session);
  if (session.file.isOpen()) WriteCalibrationRecords(session.writer());
  return true;
}

void calibrateWith(Session& session, const Reading& reading) {
  showMode(session);
  if (session.calibration.calibrationActive == 1) {
    verticalStage(session, reading);
  } else {
    horizontalStage(session, reading);
  }
}

void abandonCalibration(Session& session) {
  auto& calibration = session.calibration;
  if (calibration.calibrationPhase == 0) return;
  session.settings.calibrationFactors = session.factorsThatHold();
  calibration.calibrationActive = 0;
  calibration.calibrationPhase = 0;
  calibration.calibrationStep = 0;
}

}  // namespace kalmira
