#include "instruments/start_options.h"

#include <fmt/format.h>

namespace kalmira {

CommandOption kindOption(std::optional<Kind>& kind) {
  const auto take = [&kind](const std::string& value) {
    const auto* instrument = findInstrumentByName(value);
    if (instrument == nullptr) return fmt::format("there is no instrument \"{}\"", value);
    kind = instrument->kind;
    return std::string{};
  };
  CommandOption option{"--kind", "NAME|0..7", "ORLA, TESKB, TESKDD, TESK, VARDO, MIRKA, GLACO, TESK2", take};
  for (int index = 0; index < kKindCount; ++index) option.choices.emplace_back(findInstrument(index)->name);
  return option;
}

CommandOption teskTimes10Option(bool& teskTimes10) {
  return {"--tesk-x10", "", "TESK: its ranges are ten times as large", takeFlag(teskTimes10)};
}

CommandGroup instrumentOptions(StartOptions& options) {
  return {"Instrument",
          {kindOption(options.kind),
           {"--ice", "", "ORLA: for ice thickness, with the settings kept for that", takeFlag(options.ice)},
           teskTimes10Option(options.teskTimes10)}};
}

CommandGroup fileOptions(StartOptions& options) {
  return {"Files",
          {{"--root", "DIR", "storage root; otherwise Kalmira in your documents folder",
            takeText(options.root, "--root takes a folder")},
           {"--storage-class",
            "N",
            "0 to 3: where settings and data lie below the root (1)",
            takeNumber<int>(options.storageClass, 0, 3, "--storage-class is 0 to 3"),
            "",
            CommandOption::Again::lastCounts,
            {"0", "1", "2", "3"}},
           {"--mirror", "DIR", "a second copy as it is recorded, in a folder on another medium",
            takeText(options.mirror, "--mirror takes a folder")},
           eitherOption("--tick-base", "boot|program", "what the ticks in the file count from (boot)", options.tickBase,
                        TickBase::boot, TickBase::program)}};
}

std::string startContradiction(const StartOptions& options) {
  const auto* instrument = options.kind ? &instrumentOf(*options.kind) : nullptr;
  if (instrument == nullptr) return {};
  if (options.ice && !instrument->hasIce()) return "--ice is for the ORLA";
  if (options.teskTimes10 && !instrument->rangeTimes10) return "--tesk-x10 is for the TESK";
  return {};
}

}  // namespace kalmira
