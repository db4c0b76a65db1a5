#include "instruments/catalogue.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace kalmira {
namespace {

constexpr std::array<Instrument, kKindCount> kCatalogue{{
    {.kind = Kind::orla,
     .name = "ORLA",
     .title = "ORLA",
     .portLabel = "ORLA Port",
     .portFailureText = "Cannot open ORLA port",
     .settingsFile = "ORLA.INI",
     .versionTag = "CEVer2.30",
     .dataFolder = "DATAORLA",
     .documentsFolder = "DataOrla",
     .extension = ".ROR",
     .filterText = "ORLA Files (*.ROR)",
     .modelTag = "ORLA2",
     .programVersion = "W230"},
    {.kind = Kind::teskb,
     .name = "TESKB",
     .title = "TESKB",
     .portLabel = "TESKB Port",
     .portFailureText = "Cannot open TESKB port",
     .settingsFile = "TESKB.INI",
     .versionTag = "CEVer2.22",
     .dataFolder = "DATATESKB",
     .documentsFolder = "DataTeskB",
     .extension = ".PTS",
     .filterText = "TESKB Files (*.PTS)",
     .modelTag = "TESKB",
     .programVersion = "W222"},
    {.kind = Kind::teskdd,
     .name = "TESKDD",
     .title = "TESKDD",
     .portLabel = "TESK-DD Port",
     .portFailureText = "Cannot open TESKD port",
     .settingsFile = "TESKD.INI",
     .versionTag = "CEVer2.22",
     .dataFolder = "DATATESKD",
     .documentsFolder = "DataTeskD",
     .extension = ".QTS",
     .filterText = "TESKD Files (*.QTS)",
     .modelTag = "TESKD",
     .programVersion = "W222"},
    {.kind = Kind::tesk,
     .name = "TESK",
     .title = "TESK",
     .portLabel = "TESK Port",
     .portFailureText = "Cannot open TESK port",
     .settingsFile = "TESK.INI",
     .versionTag = "CEVer2.22",
     .dataFolder = "DATATESK",
     .documentsFolder = "DataTesk",
     .extension = ".RTS",
     .filterText = "TESK Files (*.RTS)",
     .modelTag = "TESKS",
     .programVersion = "W222"},
    {.kind = Kind::vardo,
     .name = "VARDO",
     .title = "VARDO",
     .portLabel = "VARDO Port",
     .portFailureText = "Cannot open VARDO port",
     .settingsFile = "VARDO.INI",
     .versionTag = "CEVer2.30",
     .dataFolder = "DATAVARDO",
     .documentsFolder = "DataVardo",
     .extension = ".RVD",
     .filterText = "VARDO Files (*.RVD)",
     .modelTag = "VARDO",
     .programVersion = "W230"},
    // A reduced member of the family: no title of its own, and one folder whatever the storage class.
    {.kind = Kind::mirka,
     .name = "MIRKA",
     .title = "KALMIRA",
     .portLabel = "",
     .portFailureText = "Cannot open MIRKA port",
     .settingsFile = "MIRKA.INI",
     .versionTag = "CEVer2.10",
     .dataFolder = "DATAMIRKA",
     .documentsFolder = "",
     .extension = ".RMI",
     .filterText = "MIRKA Files (*.RMI)",
     .modelTag = "MIRKA",
     .programVersion = "W210",
     .fixedStorageFolder = true},
    {.kind = Kind::glaco,
     .name = "GLACO",
     .title = "GLACO",
     .portLabel = "GLACO Port",
     .portFailureText = "Cannot open GLACO port",
     .settingsFile = "GLACO.INI",
     .versionTag = "CEVer2.30",
     .dataFolder = "DATAICE",
     .documentsFolder = "",
     .extension = ".IOR",
     .filterText = "GLACO Files (*.IOR)",
     .modelTag = "GLACO",
     .programVersion = "W210",
     .framing = Framing::ice,
     .instrumentLength = 8,
     .recordPeriodMs = 100.0},
    {.kind = Kind::tesk2,
     .name = "TESK2",
     .title = "TESK2",
     .portLabel = "TESK-2 Port",
     .portFailureText = "Cannot open TESK2 port",
     .settingsFile = "TESK2.INI",
     .versionTag = "CEVer2.30",
     .dataFolder = "DATATESK2",
     .documentsFolder = "DataTesk2",
     .extension = ".NTS",
     .filterText = "TESK2 Files (*.NTS)",
     .modelTag = "TESK2",
     .programVersion = "W230",
     .framing = Framing::tesk2,
     .instrumentBaud = 19200,
     .instrumentLength = 14,
     .recordPeriodMs = 50.0,
     .fileRecordLength = 26},
}};

constexpr std::string_view kShortOrlaTag = "ORLAS";
constexpr std::string_view kIceSettingsFile = "ORLICE.INI";

// The store a folder lies in: "C_DRIVE", "Storage" or "" for the root.
std::string_view storeName(const Instrument& instrument, int storageClass) {
  if (instrument.fixedStorageFolder || storageClass == 0) return "C_DRIVE";
  if (storageClass == 1) return "Storage";
  return "";
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::toupper(x) == std::toupper(y); });
}

}  // namespace

const Instrument* findInstrument(int kindIndex) {
  if (kindIndex < 0 || kindIndex >= kKindCount) return nullptr;
  return &kCatalogue[static_cast<std::size_t>(kindIndex)];
}

const Instrument& instrumentOf(Kind kind) {
  return kCatalogue[static_cast<std::size_t>(kind)];
}

const Instrument* findInstrumentByName(std::string_view nameOrIndex) {
  if (nameOrIndex.size() == 1 && nameOrIndex[0] >= '0' && nameOrIndex[0] <= '7') {
    return findInstrument(nameOrIndex[0] - '0');
  }
  for (const auto& row : kCatalogue) {
    if (equalIgnoringCase(row.name, nameOrIndex)) return &row;
  }
  return nullptr;
}

std::string settingsFolder(Kind kind, int storageClass) {
  return fmt::format("{}\\KALINI", storeName(instrumentOf(kind), storageClass));
}

std::string settingsPath(Kind kind, bool iceOption, int storageClass) {
  const auto& instrument = instrumentOf(kind);
  const bool iceFile = kind == Kind::orla && iceOption;
  return fmt::format("{}\\{}", settingsFolder(kind, storageClass),
                     iceFile ? kIceSettingsFile : instrument.settingsFile);
}

std::string dataFolder(Kind kind, int storageClass) {
  const auto& instrument = instrumentOf(kind);
  const auto store = storeName(instrument, storageClass);
  if (!store.empty()) return fmt::format("{}\\{}", store, instrument.dataFolder);
  if (instrument.documentsFolder.empty()) return fmt::format("Storage\\{}", instrument.dataFolder);
  return fmt::format("My Documents\\{}", instrument.documentsFolder);
}

std::string dataFolderPrefix(Kind kind, int storageClass) {
  return fmt::format("{}\\", dataFolder(kind, storageClass));
}

std::string dataFolderForDialog(Kind kind, int storageClass) {
  const auto prefix = dataFolderPrefix(kind, storageClass);
  return prefix.starts_with("C_DRIVE") ? prefix : fmt::format("\\{}", prefix);
}

std::string filterPattern(Kind kind) {
  return "*" + std::string(instrumentOf(kind).extension);
}

std::string headerTag(Kind kind, bool shortInstrument, bool gps) {
  const auto& instrument = instrumentOf(kind);
  const auto model = kind == Kind::orla && shortInstrument ? kShortOrlaTag : instrument.modelTag;
  return fmt::format("{:<8}{}{}", model, instrument.programVersion, gps ? "GPS" : "GRD");
}

const Instrument* findInstrumentByHeader(std::string_view header1) {
  if (header1.size() < 15) return nullptr;
  const auto model = header1.substr(0, 5);
  const auto program = header1.substr(8, 4);
  const auto survey = header1.substr(12, 3);
  if (survey != "GRD" && survey != "GPS") return nullptr;
  for (const auto& row : kCatalogue) {
    const bool modelFits = model == row.modelTag || (row.kind == Kind::orla && model == kShortOrlaTag);
    if (modelFits && program == row.programVersion) return &row;
  }
  return nullptr;
}

}  // namespace kalmira
