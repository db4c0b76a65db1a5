#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "datafile/data_file.h"
#include "datafile/record_format.h"
#include "instruments/catalogue.h"
#include "platform/clock.h"
#include "settings/settings.h"

// The writers of a session: each appends its records at the end of the open data file, in the order that readers rely
// on: header, line block, time mark at creation; line block, time mark at a new line; station, time mark at a new
// station. Called on the session's thread. A write that fails is the data file's to remember.
namespace kalmira {

// What the writers draw on. Everything referred to outlives the session.
struct WriterContext {
  DataFile& file;
  const Settings& settings;
  const Instrument& instrument;
  const Clock& clock;
  bool iceOption = false;  // ORLA with the ice display on
  int storageClass = kDefaultStorageClass;
  bool portrait = true;  // the screen is taller than wide
  // TESK2: the factors that hold, and those they replaced.
  std::array<float, 6> calibrationFactors{};
  std::array<float, 6> deletedCalibration{};
};

// What header 1 says of a file that is begun now.
Header1 header1Of(const WriterContext& context);
void WriteFileHeader(const WriterContext& context, std::string_view baseName);
void WriteLineBlock(const WriterContext& context);  // with the calibration records of a TESK2
void WriteCalibrationRecords(const WriterContext& context);
void WriteTimeMark(const WriterContext& context);
void WriteStationRecord(const WriterContext& context, double station);
// `text` as left by the handler, any bytes: the first 12 (TESK2: 14) are written, a shorter one is padded with blanks.
void WriteReadingRecord(const WriterContext& context, std::string_view text, std::uint32_t tick);
// `text` is UTF-8; `tag` is tag::kComment or tag::kEvent.
void WriteNoteRecord(const WriterContext& context, std::string_view text, char tag);
void WriteGpsSentence(const WriterContext& context, std::string_view sentence, std::uint32_t tick, char first,
                      char more);

}  // namespace kalmira
