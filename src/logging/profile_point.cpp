#include "logging/profile_point.h"

namespace kalmira {

float iceThicknessOf(const Session& session, const AsciiReading& reading, Channels& channels) {
  if (!session.iceOption || reading.orientation != 'H') return kIceBelowTable;
  const bool kept = session.settings.iceQuantity == 1;
  return IceThickness(static_cast<double>(reading.conductivity), session.iceModel,
                      kept ? &channels : nullptr);
}

ProfilePoint profilePointOf(const Session& session, std::string_view text,
                            const std::array<float, 6>& factors) {
  ProfilePoint point;
  if (session.instrument.framing == Framing::tesk2) {
    char orientation = 'H';
    char secondMode = 'M';
    DecodeTesk2Record(text, tesk2Offsets(factors), session.settings.surveyListA == 1, point.channels,
                      orientation, secondMode);
    const auto auxiliary = tesk2AuxiliaryValues(text);
    point.extra1 = auxiliary[0];
    point.extra2 = auxiliary[1];
  } else {
    AsciiReading reading;
    DecodeAsciiRecord(text, session.instrument.kind, asciiOptions(session), reading, point.channels);
    iceThicknessOf(session, reading, point.channels);
  }
  return point;
}

}  // namespace kalmira
