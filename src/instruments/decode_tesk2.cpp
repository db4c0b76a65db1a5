#include "instruments/decode.h"

namespace kalmira {
namespace {

// Parts per thousand for each mS/m of the quadrature scale; the second channel's is a quarter of the first's.
constexpr double kInphaseFactor1 = 0.028819;
constexpr double kInphaseFactor2 = 0.00720475;

// The fields of the record in the order of its words.
enum Word : std::size_t { conductivity2, inphase2, conductivity1, inphase1, auxiliary1, auxiliary2 };

unsigned byteAt(std::string_view record, std::size_t position) {
  return position < record.size() ? static_cast<unsigned char>(record[position]) : 0U;
}

std::uint16_t wordAt(std::string_view record, std::size_t word) {
  return static_cast<std::uint16_t>(byteAt(record, 2 + 2 * word) * 256U + byteAt(record, 3 + 2 * word));
}

// The scale that both quantities share: 0 to 65535 is -1280 to almost 1280, 32768 is 0.
double scaled(std::uint16_t word) {
  return (5 * static_cast<int>(word) / 1024.0 - 160.0) * 8.0;
}

// Offsets are applied in single precision, to the rounded value.
float conductivityOf(std::uint16_t word, float offset) {
  return static_cast<float>(scaled(word)) + offset;
}

float inphaseOf(std::uint16_t word, double factor, bool unscaled, float offset) {
  return static_cast<float>(unscaled ? scaled(word) : scaled(word) * factor) - offset;
}

float auxiliaryOf(std::uint16_t word) {
  return static_cast<float>(word / 3.108 - 50.0);
}

void decode(std::string_view record, const Tesk2Offsets& offsets, bool unscaled, Tesk2Reading& reading,
            Channels& channels) {
  for (std::size_t i = 0; i < reading.words.size(); ++i) reading.words[i] = wordAt(record, i);
  // The reader has raised the mode byte by 16 and 8 for the markers. It is tested with them: a marked record
  // is vertical and "M" whatever the instrument said.
  const unsigned mode = byteAt(record, 1);
  const bool vertical = mode >= 4;
  reading.orientation = vertical ? 'V' : 'H';
  reading.secondMode = mode == 2 || mode == 6 ? 'N' : 'M';
  const auto& words = reading.words;
  reading.conductivity1 = conductivityOf(words[conductivity1], offsets.condOffset1);
  reading.conductivity2 = conductivityOf(words[conductivity2], offsets.condOffset2);
  reading.inphase1 = inphaseOf(words[inphase1], kInphaseFactor1, unscaled,
                               vertical ? offsets.inphaseOffsetV1 : offsets.inphaseOffsetH1);
  reading.inphase2 = inphaseOf(words[inphase2], kInphaseFactor2, unscaled,
                               vertical ? offsets.inphaseOffsetV2 : offsets.inphaseOffsetH2);
  channels = {};
  const std::array<float, 4> values{reading.conductivity1, reading.inphase1, reading.conductivity2,
                                    reading.inphase2};
  for (std::size_t i = 0; i < values.size(); ++i) {
    const std::size_t slot = 2 * i + (vertical ? 0 : 1);
    channels.value[slot] = values[i];
    channels.present[slot] = 1;
  }
}

}  // namespace

Tesk2Offsets tesk2Offsets(const std::array<float, 6>& calibrationFactors) {
  return {.condOffset1 = calibrationFactors[4],
          .condOffset2 = calibrationFactors[5],
          .inphaseOffsetV1 = calibrationFactors[0],
          .inphaseOffsetV2 = calibrationFactors[1],
          .inphaseOffsetH1 = calibrationFactors[2],
          .inphaseOffsetH2 = calibrationFactors[3]};
}

float DecodeTesk2Live(std::string_view record, const Tesk2Offsets& offsets, bool inphaseUnscaled,
                      Tesk2Reading& reading, Channels& channels) {
  decode(record, offsets, inphaseUnscaled, reading, channels);
  reading.auxiliary1 = auxiliaryOf(reading.words[auxiliary1]);
  reading.auxiliary2 = auxiliaryOf(reading.words[auxiliary2]);
  return reading.inphase2;
}

void DecodeTesk2Record(std::string_view record, const Tesk2Offsets& offsets, bool inphaseUnscaled,
                       Channels& channels, char& orientation, char& secondMode) {
  Tesk2Reading reading;
  decode(record, offsets, inphaseUnscaled, reading, channels);
  orientation = reading.orientation;
  secondMode = reading.secondMode;
}

std::array<float, 2> tesk2AuxiliaryValues(std::string_view record) {
  return {auxiliaryOf(wordAt(record, auxiliary1)), auxiliaryOf(wordAt(record, auxiliary2))};
}

}  // namespace kalmira
