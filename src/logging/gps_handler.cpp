#include "logging/gps_handler.h"

#include <fmt/format.h>

#include "gps/fix_status.h"
#include "logging/gps_watch.h"
#include "logging/reading_steps.h"

namespace kalmira {
namespace {

bool recording(const Session& session) { return session.loggingState == kLogging && session.linkActive; }

bool manual(const Session& session) { return session.surveyMode() == kModeManual; }

void OnGpsSentence(Session& session, const GpsLine& line, bool checksumOk) {
  const auto texts = fixTexts(line.text, checksumOk);
  if (texts.fix) session.gps.fix = *texts.fix;
  if (session.calibration.calibrationActive != 0) return;  // the calibration has the panel to itself
  auto& view = session.view;
  if (texts.activity) {
    session.gpsSpin = !session.gpsSpin;
    view.show(PanelField::gpsActivity, session.gpsSpin ? "/" : "\\");
    if (session.loggingState == kLogging) {
      view.show(PanelField::gpsCount, fmt::format("{:<5}", session.gpsRecordCount));
    }
  }
  if (texts.satellites) view.show(PanelField::satellites, *texts.satellites);
  if (texts.fix) view.show(PanelField::fix, *texts.fix);
  if (texts.pdop) view.show(PanelField::pdop, *texts.pdop);
}

void write(Session& session, const GpsLine& line, bool checksumOk) {
  WriteGpsSentence(session.writer(), line.text, line.tick, checksumOk ? tag::kGpsFirst : tag::kTextFirst,
                   checksumOk ? tag::kGpsMore : tag::kTextMore);
  ++session.counts.gpsSentences;
}

}  // namespace

void OnGpsLine(Session& session, const GpsLine& line) {
  const bool checksumOk = nmeaChecksumOk(line.text);
  noteGpsLine(session, checksumOk);
  if (manual(session)) {
    if (!checksumOk) return OnGpsSentence(session, line, false);
    if (session.held.hold(line)) OnGpsSentence(session, line, true);
    if (session.readingLogged && session.held.heldGgaReady && session.file.isOpen()) {
      writeReadySentences(session);
      session.readingLogged = false;
    }
    return;
  }
  const bool position = checksumOk && line.text.find("GGA") != std::string::npos;
  if (recording(session) && position) ++session.gpsRecordCount;
  OnGpsSentence(session, line, checksumOk);
  if (recording(session)) write(session, line, checksumOk);
}

}  // namespace kalmira
