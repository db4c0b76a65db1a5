#include "gps/fix_status.h"

#include <fmt/format.h>

#include <array>

#include "gps/nmea.h"
#include "platform/text.h"

namespace kalmira {
namespace {

constexpr int kQualityField = 7;
constexpr int kSatellitesField = 8;
constexpr int kPdopField = 16;
constexpr std::size_t kShortestSentence = 6;

}  // namespace

std::string_view fixWord(char quality) {
  static constexpr std::array<std::string_view, 10> kWords{"NO FIX", "AGPS", "DGPS", "RTK",  "CODE",
                                                           "RTK5",   "RTK6", "RTK7", "RTK8", "RTK9"};
  return quality >= '0' && quality <= '9' ? kWords[static_cast<std::size_t>(quality - '0')] : std::string_view{};
}

FixTexts fixTexts(std::string_view sentence, bool checksumOk) {
  const bool gga = sentence.find("GGA") != std::string_view::npos;
  const bool gsa = sentence.find("GSA") != std::string_view::npos;
  FixTexts texts;
  if (sentence.size() < kShortestSentence || !checksumOk) {
    if (gga) texts.satellites = "??";
    if (gsa) texts.pdop = "??";
    return texts;
  }
  std::string field;
  if (gga) {
    texts.activity = true;
    const bool counted = GetNmeaField(sentence, kSatellitesField, ',', field) != 0;
    texts.satellites = fmt::format("{:>2}", counted ? parseInt(field) : 0);
    field.clear();
    GetNmeaField(sentence, kQualityField, ',', field);
    texts.fix = field.empty() ? std::string{} : std::string(fixWord(field[0]));
  }
  if (gsa) {
    texts.pdop = GetNmeaField(sentence, kPdopField, ',', field) != 0 ? fmt::format("{:<4.1f}", parseReal(field))
                                                                     : std::string("N/A");
  }
  return texts;
}

}  // namespace kalmira
