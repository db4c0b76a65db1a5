#include "export/survey_writer.h"

#include <fmt/format.h>

#include "platform/text.h"

namespace kalmira {
namespace {

bool atOneStation(const ReadingRow& first, const ReadingRow& next) {
  if (next.lineBlock != first.lineBlock) return false;
  return next.repeat > 1 || (first.station && first.station == next.station);
}

// Voltages of the battery are no measurement.
void withoutVoltages(Reading& reading) {
  if (reading.batteryLevels) reading.channels = {};
  reading.batteryLevels = false;
}

}  // namespace

std::string notesText(const SurveyNotes& notes) {
  std::string text;
  for (const auto& field : notesFields()) {
    const auto note = printable(noteText(notes, field));
    if (!note.empty()) text += fmt::format("{}{}: {}", text.empty() ? "" : "\n", field.name, note);
  }
  return text;
}

bool StationRows::take(const ReadingRow& row) {
  if (!any_ || !atOneStation(row_, row)) {
    if (!finish()) return false;
    row_ = row;
    any_ = true;
    withoutVoltages(row_.reading);
    return true;
  }
  if (row.reading.batteryLevels) return true;
  const auto& more = row.reading.channels;
  for (std::size_t slot = 0; slot < kSlots; ++slot) {
    if (more.present[slot] == 0) continue;
    row_.reading.channels.present[slot] = 1;
    row_.reading.channels.value[slot] = more.value[slot];
  }
  return true;
}

bool StationRows::finish() {
  if (!std::exchange(any_, false)) return true;
  return take_(row_);
}

RowsResult writeFile(RecordReader& reader, SurveyWriter& writer, OutputFrame& frame, const SourceFile& file,
                     const RowOptions& options, bool wide) {
  if (!writer.begin(file)) return {.stopped = true};
  const auto take = [&writer](const ReadingRow& row) { return writer.take(row); };
  StationRows stations(take);
  RowTakers takers{.reading = take,
                   .event = [&writer](const EventRow& row) { return writer.take(row); },
                   .fix = [&writer](const Fix& fix) { return writer.take(fix); }};
  if (wide) takers.reading = [&stations](const ReadingRow& row) { return stations.take(row); };
  auto result = eachRow(reader, options, frame.zone, takers);
  result.stopped = result.stopped || !stations.finish() || !writer.endOfFile();
  return result;
}

}  // namespace kalmira
