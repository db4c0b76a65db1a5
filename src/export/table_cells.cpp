#include "export/table_cells.h"

#include <array>

#include "instruments/catalogue.h"

namespace kalmira {
namespace {

using enum ColumnType;

constexpr std::string_view kMetres = "m";
constexpr std::string_view kDegrees = "degree";
constexpr std::string_view kSeconds = "s";

constexpr std::array kBeforeChannels{Column{"line", text, {}, "name of the survey line"},
                                     Column{"station", real},
                                     Column{"repeat", integer, {}, "number of the reading at its station"},
                                     Column{"date", date, {}, "by the device's clock"},
                                     Column{"time", text, {}, "by the device's clock"},
                                     Column{"tick", integer, "ms", "of the device's counter"},
                                     Column{"dipole", text, {}, "V or H"},
                                     Column{"marker", integer, {}, "1: trigger or marker pressed"},
                                     Column{"range", text, {}, "measuring range"}};
constexpr std::array kAfterChannels{Column{"longitude", real, kDegrees, "WGS 84"},
                                    Column{"latitude", real, kDegrees, "WGS 84"},
                                    Column{"altitude", real, kMetres, "above the geoid"},
                                    Column{"easting", real, kMetres},
                                    Column{"northing", real, kMetres},
                                    Column{"epsg", integer, {}, "code of easting and northing"},
                                    Column{"fix", integer, {}, "GGA digit of the worse of two fixes"},
                                    Column{"satellites", integer, {}, "of the two fixes the fewer"},
                                    Column{"hdop", real, {}, "of the two fixes the larger"},
                                    Column{"position_gap", real, kSeconds, "between the two fixes"},
                                    Column{"utc", moment, {}, "by the receiver's clock"},
                                    Column{"grid_x", real, {}, "in the survey's own grid"},
                                    Column{"grid_y", real, {}, "in the survey's own grid"},
                                    Column{"segment", integer, {}, "counts the gaps of the survey"},
                                    Column{"file", text, {}, "data file"},
                                    Column{"kind", text, {}, "instrument"}};
constexpr std::array kEventColumns{Column{"file", text, {}, "data file"},
                                   Column{"kind", text, {}, "instrument"},
                                   Column{"event", text, {}, "line, station, comment, calibration or event"},
                                   Column{"text", text, {}, "as it stands in the file"},
                                   kBeforeChannels[0],
                                   kBeforeChannels[1],
                                   kBeforeChannels[3],
                                   kBeforeChannels[4],
                                   kBeforeChannels[5],
                                   kAfterChannels[10],
                                   kAfterChannels[0],
                                   kAfterChannels[1],
                                   kAfterChannels[2],
                                   kAfterChannels[3],
                                   kAfterChannels[4],
                                   kAfterChannels[5],
                                   kAfterChannels[13]};

// The ice thickness stands in tables of files that ask for it.
std::span<const Channel> channelsOf(const Header1& header) {
  return kalmira::channelsOf(instrumentOf(header.kind), header.iceOption && header.iceQuantity == 1);
}

}  // namespace

void takeChannels(OutputFrame& frame, const Header1& header) {
  for (const auto& channel : channelsOf(header)) {
    if (std::ranges::find(frame.channels, channel.column, &ChannelColumn::name) == frame.channels.end())
      frame.channels.push_back({channel.column, channel.unit});
  }
}

std::vector<Column> readingColumns(const OutputFrame& frame) {
  std::vector<Column> columns(kBeforeChannels.begin(), kBeforeChannels.end());
  for (const auto& channel : frame.channels) columns.push_back({channel.name, real, channel.unit});
  columns.insert(columns.end(), kAfterChannels.begin(), kAfterChannels.end());
  return columns;
}

std::span<const Column> eventColumns() { return kEventColumns; }

FileCells::FileCells(const OutputFrame& all, const Header1& header, std::string_view fileName)
    : name(fileName), kind(instrumentOf(header.kind).name), channelSlots(all.channels.size(), kNoSlot), frame(all) {
  const auto channels = channelsOf(header);
  for (std::size_t i = 0; i < channelSlots.size(); ++i) {
    const auto found = std::ranges::find(channels, all.channels[i].name, &Channel::column);
    if (found != channels.end()) channelSlots[i] = found->slot;
  }
}

}  // namespace kalmira
