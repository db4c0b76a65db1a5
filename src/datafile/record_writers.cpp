#include "datafile/record_writers.h"

#include <fmt/format.h>

#include "platform/text.h"

namespace kalmira {
namespace {

int lengthOf(const WriterContext& context) { return context.instrument.fileRecordLength; }

char screenMark(const WriterContext& context) {
  if (context.storageClass == 0) return ' ';
  return context.portrait ? '3' : '2';
}

// Columns 12 to 18 of header 2: what the survey mode's number is.
std::string surveyModeValue(const Settings& settings) {
  switch (surveyModeOf(settings)) {
    case kModeAuto: return fixedField(1.0 / static_cast<double>(readingsIntervalOf(settings)), 7, 3);
    case kModeWheel: return fixedField(static_cast<double>(settings.stationIncrement), 7, 3);
    default: return fmt::format("{:>7}", readingsCountOf(settings));
  }
}

}  // namespace

Header1 header1Of(const WriterContext& context) {
  const auto& settings = context.settings;
  const auto& instrument = context.instrument;
  return {.kind = instrument.kind,
          .shortInstrument = indexOr(settings.instrumentLength, 2, 0) == 1,
          .gps = settings.gpsInput == 1,
          .iceOption = context.iceOption,
          .lengthUnits = indexOr(settings.lengthUnits, 2, 0),
          .listB = indexOr(settings.surveyListB, instrument.listBValues, 0),
          .surveyMode = surveyModeOf(settings),
          .listA = indexOr(settings.surveyListA, instrument.listAValues, 0),
          .iceQuantity = indexOr(settings.iceQuantity, 2, 0),
          .seaWaterChoice = indexOr(settings.seaWaterChoice, 11, 0),
          .tesk2Variant = settings.tesk2Variant == 2 ? 2 : 1,
          .screenMark = screenMark(context)};
}

void WriteFileHeader(const WriterContext& context, std::string_view baseName) {
  context.file.append(formatHeader1(header1Of(context)));
  context.file.append(formatHeader2(lengthOf(context), baseName, surveyModeValue(context.settings)));
}

void WriteLineBlock(const WriterContext& context) {
  const int length = lengthOf(context);
  const auto& settings = context.settings;
  context.file.append(formatLineName(length, settings.lineName));
  context.file.append(formatStartStation(length, settings.startStation));
  context.file.append(formatDirection(length, indexOr(settings.direction, 4, Settings{}.direction),
                                      static_cast<double>(settings.stationIncrement)));
  context.file.append(formatDate(length, context.clock.localTime()));
  if (context.instrument.calibrated) WriteCalibrationRecords(context);
}

void WriteCalibrationRecords(const WriterContext& context) {
  for (std::size_t i = 0; i < context.calibrationFactors.size(); ++i) {
    context.file.append(formatCalibration(lengthOf(context), static_cast<int>(i) + 1,
                                          static_cast<double>(context.calibrationFactors[i]),
                                          static_cast<double>(context.deletedCalibration[i])));
  }
}

void WriteTimeMark(const WriterContext& context) {
  context.file.append(formatTimeMark(lengthOf(context), context.clock.localTime(), context.clock.tick()));
}

void WriteStationRecord(const WriterContext& context, double station) {
  context.file.append(formatStation(lengthOf(context), station, context.clock.localTime()));
}

void WriteReadingRecord(const WriterContext& context, std::string_view text, std::uint32_t tick) {
  const int length = lengthOf(context);
  const auto width = static_cast<std::size_t>(readingTextLength(length));
  context.file.append(formatReading(length, textField(text, width), tick));
}

void WriteNoteRecord(const WriterContext& context, std::string_view text, char tag) {
  context.file.append(formatNote(lengthOf(context), tag, text, context.clock.tick()));
}

void WriteGpsSentence(const WriterContext& context, std::string_view sentence, std::uint32_t tick, char first,
                      char more) {
  context.file.append(formatGpsSentence(lengthOf(context), sentence, tick, first, more));
}

}  // namespace kalmira
