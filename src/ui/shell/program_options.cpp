#include "ui/shell/program_options.h"

#include <fmt/format.h>

#include <QCommandLineParser>
#include <charconv>

namespace kalmira {
namespace {

constexpr std::string_view kUsage =
    "usage: kalmira [options] [FILE]\n"
    "  FILE                 a data file, shown at once; without --kind the logger is for its instrument, "
    "this time\n"
    "  --kind NAME|0..7     ORLA, TESKB, TESKDD, TESK, VARDO, MIRKA, GLACO, TESK2; otherwise the one last "
    "used\n"
    "  --ice                ORLA: for ice thickness, with the settings kept for that\n"
    "  --root DIR           storage root; otherwise Kalmira in your documents folder\n"
    "  --storage-class N    0 to 3: where settings and data lie below the root (1)\n"
    "  --com N=DEVICE       the device behind COM1 to COM12, for this run; may be repeated\n"
    "  --screen portrait|landscape  the shape the window opens in\n"
    "  --scale F            0.5 to 8: the size it opens in, times 240 x 320\n"
    "  --theme day|night    black on white, or dark for eyes used to the dark\n"
    "  --tick-base boot|program  what the ticks in the file count from (boot)\n"
    "  --tesk-x10           TESK: its ranges are ten times as large\n"
    "  --version            prints the version\n";

template <class Number>
std::optional<Number> wholeText(const std::string& text) {
  Number value{};
  const auto* const end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc{} || last != end) return std::nullopt;
  return value;
}

// Each takes an option's value into the options: an empty text, or what is wrong with it.
std::string takeKind(ProgramOptions& options, const std::string& value) {
  const auto* instrument = findInstrumentByName(value);
  if (instrument == nullptr) return fmt::format("there is no instrument \"{}\"", value);
  options.kind = instrument->kind;
  return {};
}

std::string takeRoot(ProgramOptions& options, const std::string& value) {
  options.root = value;
  return value.empty() ? "--root takes a folder" : "";
}

std::string takeStorageClass(ProgramOptions& options, const std::string& value) {
  const auto number = wholeText<int>(value);
  if (!number || *number < 0 || *number > 3) return "--storage-class is 0 to 3";
  options.storageClass = *number;
  return {};
}

std::string takeCom(ProgramOptions& options, const std::string& value) {
  const auto equals = value.find('=');
  if (equals == std::string::npos) return "--com takes NUMBER=DEVICE";
  const auto number = wholeText<int>(value.substr(0, equals));
  if (!number || *number < 1 || *number > kComPorts) return "--com takes a number from 1 to 12";
  const auto device = value.substr(equals + 1);
  if (device.empty()) return fmt::format("--com {}= lacks the device", *number);
  options.com[static_cast<std::size_t>(*number - 1)] = device;
  return {};
}

std::string takeScreen(ProgramOptions& options, const std::string& value) {
  if (value != "portrait" && value != "landscape") return "--screen is portrait or landscape";
  options.portrait = value == "portrait";
  return {};
}

std::string takeScale(ProgramOptions& options, const std::string& value) {
  const auto number = wholeText<double>(value);
  if (!number || !(*number >= 0.5 && *number <= 8.0)) return "--scale is a number from 0.5 to 8";
  options.scale = number;
  return {};
}

std::string takeTheme(ProgramOptions& options, const std::string& value) {
  if (value != "day" && value != "night") return "--theme is day or night";
  options.night = value == "night";
  return {};
}

std::string takeTickBase(ProgramOptions& options, const std::string& value) {
  if (value != "boot" && value != "program") return "--tick-base is boot or program";
  options.tickBase = value == "boot" ? TickBase::boot : TickBase::program;
  return {};
}

struct ValueOption {
  const char* name;
  std::string (*take)(ProgramOptions&, const std::string&);
};
constexpr ValueOption kValueOptions[] = {
    {"kind", takeKind},   {"root", takeRoot},          {"storage-class", takeStorageClass},
    {"com", takeCom},     {"screen", takeScreen},      {"scale", takeScale},
    {"theme", takeTheme}, {"tick-base", takeTickBase},
};
constexpr const char* kFlags[] = {"ice", "tesk-x10", "help", "version"};

void declareOptions(QCommandLineParser& parser) {
  for (const auto& option : kValueOptions) {
    QCommandLineOption declared(QString::fromLatin1(option.name));
    declared.setValueName(QStringLiteral("value"));
    parser.addOption(declared);
  }
  for (const auto* flag : kFlags) parser.addOption(QCommandLineOption(QString::fromLatin1(flag)));
}

std::string takeValues(ProgramOptions& options, const QCommandLineParser& parser) {
  for (const auto& option : kValueOptions) {
    for (const auto& value : parser.values(QString::fromLatin1(option.name))) {
      if (auto problem = option.take(options, value.toStdString()); !problem.empty()) return problem;
    }
  }
  return {};
}

std::string checkTogether(ProgramOptions& options) {
  if (options.ice && options.kind.value_or(Kind::orla) != Kind::orla) return "--ice is for the ORLA";
  if (options.teskTimes10 && options.kind.value_or(Kind::tesk) != Kind::tesk)
    return "--tesk-x10 is for the TESK";
  // There is but one instrument for ice work with an option.
  if (options.ice) options.kind = Kind::orla;
  return {};
}

}  // namespace

std::variant<ProgramOptions, ProgramHelp, ProgramUsageError> parseProgramOptions(
    const std::vector<std::string>& arguments) {
  QCommandLineParser parser;
  declareOptions(parser);
  QStringList list{QStringLiteral("kalmira")};
  for (const auto& argument : arguments) list << QString::fromStdString(argument);
  const bool understood = parser.parse(list);
  if (understood && parser.isSet(QStringLiteral("help"))) return ProgramHelp{std::string(kUsage)};
  if (understood && parser.isSet(QStringLiteral("version")))
    return ProgramHelp{"kalmira " KALMIRA_VERSION "\n"};
  if (!understood) return ProgramUsageError{parser.errorText().toStdString()};
  const auto files = parser.positionalArguments();
  if (files.size() > 1)
    return ProgramUsageError{fmt::format("\"{}\" is one file too many", files[1].toStdString())};
  ProgramOptions options;
  if (!files.isEmpty()) options.file = files.constFirst().toStdString();
  options.ice = parser.isSet(QStringLiteral("ice"));
  options.teskTimes10 = parser.isSet(QStringLiteral("tesk-x10"));
  if (auto problem = takeValues(options, parser); !problem.empty()) return ProgramUsageError{problem};
  if (auto problem = checkTogether(options); !problem.empty()) return ProgramUsageError{problem};
  return options;
}

}  // namespace kalmira
