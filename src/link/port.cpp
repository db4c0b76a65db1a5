#include "link/port.h"

#include <fmt/format.h>

#include <array>

namespace kalmira {
namespace {

template <typename Value, std::size_t count>
std::optional<Value> choice(const std::array<Value, count>& list, int index) {
  if (index < 0 || index >= static_cast<int>(count)) return std::nullopt;
  return list[static_cast<std::size_t>(index)];
}

constexpr std::array kGpsBauds{4800, 9600, 19200, 38400, 57600, 115200, 230400, 460800};
constexpr std::array kGpsDataBits{7, 8};
constexpr std::array kGpsParities{Parity::none, Parity::even, Parity::odd};
constexpr std::array kGpsStopBits{1, 2};

}  // namespace

LineSettings instrumentLine(Kind kind) {
  return {.baud = instrumentOf(kind).instrumentBaud,
          .dataBits = 8,
          .parity = Parity::none,
          .stopBits = 1,
          .xonXoff = false,
          .dsrOutputFlow = false,
          .dtr = true,
          .rts = false};
}

LineSettings markerLine(Kind kind) {
  LineSettings line = instrumentLine(kind);
  line.dsrOutputFlow = true;
  return line;
}

LineSettings gpsPortLine(const Settings& settings) {
  return {.baud = choice(kGpsBauds, settings.gpsBaudIndex),
          .dataBits = choice(kGpsDataBits, settings.gpsDataBitsIndex),
          .parity = choice(kGpsParities, settings.gpsParityIndex),
          .stopBits = choice(kGpsStopBits, settings.gpsStopBitsIndex),
          .xonXoff = true,
          .dsrOutputFlow = false,
          .dtr = std::nullopt,
          .rts = std::nullopt};
}

int instrumentComNumber(const Settings& settings) {
  return indexOr(settings.instrumentPortIndex, kComPorts, Settings{}.instrumentPortIndex) + 1;
}

int gpsComNumber(const Settings& settings) {
  return indexOr(settings.gpsPortIndex, kComPorts, Settings{}.gpsPortIndex) + 1;
}

int markerComNumber(int markerPortChoice) {
  const int position = indexOr(markerPortChoice, kComPorts, 0);
  return position >= 6 ? position + 1 : position;
}

std::string comName(int comNumber) { return fmt::format("COM{}:", comNumber); }

MarkerPlace markerPlaceOf(Kind kind, const Settings& settings) {
  const int position = indexOr(settings.markerPortChoice, kComPorts, 0);
  if (!instrumentOf(kind).hasMarker || position < 1) return MarkerPlace::none;
  // The list position is compared as it stands, not the COM number behind it.
  return position - 1 == instrumentComNumber(settings) - 1 ? MarkerPlace::instrumentPort : MarkerPlace::ownPort;
}

}  // namespace kalmira
