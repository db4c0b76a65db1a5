#include "gps/nmea.h"

#include <fmt/format.h>

#include <array>
#include <charconv>

#include "platform/text.h"

namespace kalmira {
namespace {

// A hexadecimal number after blanks, with an optional sign and "0x"; what follows it is ignored, no digits are 0. A
// negative number wraps round. False when 32 bits cannot hold it.
bool parseHex(std::string_view text, std::uint32_t& value) {
  const auto start = text.find_first_not_of(" \t\r\n\v\f");
  text.remove_prefix(start == std::string_view::npos ? text.size() : start);
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) text.remove_prefix(1);
  if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
  value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (negative) value = 0U - value;
  return result.ec != std::errc::result_out_of_range;
}

constexpr int kQualityField = 7;
constexpr int kSatellitesField = 8;
constexpr int kPdopField = 16;
constexpr std::size_t kShortestSentence = 6;

}  // namespace

bool NmeaFramer::feed(std::uint8_t byte, std::uint32_t tick) {
  if (byte == '\n') {
    if (line_.empty()) return false;
    line_.pop_back();
    complete_.text.assign(line_, 0, line_.find('\0'));
    complete_.tick = tick_;
    line_.clear();
    return true;
  }
  if (byte == '$' || line_.size() > limit_) line_.clear();
  if (line_.empty()) tick_ = tick;
  line_.push_back(static_cast<char>(byte));
  return false;
}

// "$GPGSA,A,3,...*33"
bool nmeaChecksumOk(std::string_view line) {
  const auto last = line.rfind('*');
  if (!line.starts_with('$') || last == std::string_view::npos) return false;
  std::uint32_t sum = 0;
  for (const char byte : line.substr(1, line.find('*') - 1)) sum ^= static_cast<unsigned char>(byte);
  std::uint32_t stated = 0;
  return parseHex(line.substr(last + 1), stated) && stated == sum;
}

int GetNmeaField(std::string_view sentence, int n, char separator, std::string& out) {
  if (n < 1) return 0;
  for (; n > 1; --n) {
    const auto end = sentence.find(separator);
    if (end == std::string_view::npos) return 0;
    sentence.remove_prefix(end + 1);
  }
  out.assign(sentence.substr(0, sentence.find(separator)));
  return 1;
}

std::string_view fixWord(char quality) {
  static constexpr std::array<std::string_view, 10> kWords{"NO FIX", "AGPS", "DGPS", "RTK",  "CODE",
                                                           "RTK5",   "RTK6", "RTK7", "RTK8", "RTK9"};
  return quality >= '0' && quality <= '9' ? kWords[static_cast<std::size_t>(quality - '0')] : std::string_view{};
}

FixTexts fixTextsOf(std::string_view sentence, bool checksumOk) {
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
