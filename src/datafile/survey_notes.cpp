#include "datafile/survey_notes.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>
#include <system_error>

#include "platform/files.h"
#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::string_view kSettings = "settings";
constexpr double kFarthest_m = 100;
constexpr double kLongestLag_s = 10;
constexpr double kDay_s = 86400;
// A machine without a clock of its own begins in 1970; some receivers are 20 years behind.
constexpr double kLargestDifference_s = 1e10;
constexpr std::size_t kProblemsTold = 5;

constexpr std::array<NotesField, 16> kFields{{
    {"project", &SurveyNotes::project},
    {"site", &SurveyNotes::site},
    {"operator", &SurveyNotes::operatorName},
    {"instrumentSerial", &SurveyNotes::instrumentSerial},
    {"calibrationDate", &SurveyNotes::calibrationDate},
    {"instrumentHeight", &SurveyNotes::instrumentHeight, true, 0, kFarthest_m},
    {"antennaAhead", &SurveyNotes::antennaAhead, true, -kFarthest_m, kFarthest_m},
    {"antennaRight", &SurveyNotes::antennaRight, true, -kFarthest_m, kFarthest_m},
    {"antennaUp", &SurveyNotes::antennaUp, true, -kFarthest_m, kFarthest_m},
    {"gpsLag", &SurveyNotes::gpsLag, true, -kLongestLag_s, kLongestLag_s},
    {"version", &SurveyNotes::version, false},
    {"kind", &SurveyNotes::kind, false},
    {"created", &SurveyNotes::created, false},
    {"utcOffset", &SurveyNotes::utcOffset, false, -kDay_s, kDay_s},
    {"clockDifference", &SurveyNotes::clockDifference, false, -kLargestDifference_s, kLargestDifference_s},
    {"teskRangeTimes10", &SurveyNotes::teskRangeTimes10, false},
}};

const NotesField* findNote(std::string_view name) {
  const auto* found =
      std::find_if(kFields.begin(), kFields.end(), [&](const auto& field) { return field.name == name; });
  return found == kFields.end() ? nullptr : found;
}

std::string textProblem(std::string_view name, std::string_view text) {
  if (hasControlCharacters(text)) return fmt::format("{} has a line end or the like in it", name);
  if (text.size() > kLongestNote) return fmt::format("{} is longer than {} bytes", name, kLongestNote);
  return {};
}

// A value as a file or an operator gives it. Nothing: null, a list or an object.
using Value = std::variant<std::monostate, bool, double, std::string>;

// Puts a value into its field. Returns an empty text, or why it cannot stand there.
struct TakeValueInto {
  SurveyNotes& notes;
  const NotesField& field;
  const Value& value;

  std::string operator()(std::string SurveyNotes::*member) const {
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) return fmt::format("{} is no text", field.name);
    auto problem = textProblem(field.name, *text);
    if (problem.empty()) notes.*member = *text;
    return problem;
  }
  std::string operator()(std::optional<double> SurveyNotes::*member) const {
    const auto* number = std::get_if<double>(&value);
    if (number == nullptr) return fmt::format("{} is no number", field.name);
    if (!(*number >= field.least && *number <= field.most)) {
      return fmt::format("{} is not from {} to {}", field.name, field.least, field.most);
    }
    notes.*member = *number;
    return {};
  }
  std::string operator()(std::optional<bool> SurveyNotes::*member) const {
    const auto* yes = std::get_if<bool>(&value);
    if (yes == nullptr) return fmt::format("{} is neither true nor false", field.name);
    notes.*member = *yes;
    return {};
  }
};

std::string take(SurveyNotes& notes, const NotesField& field, const Value& value) {
  return std::visit(TakeValueInto{notes, field, value}, field.member);
}

// Takes the file's values one after the other, so that neither its depth nor its size costs memory, and what stands
// before a fault is kept.
class Reader {
 public:
  using number_integer_t = nlohmann::json::number_integer_t;
  using number_unsigned_t = nlohmann::json::number_unsigned_t;
  using number_float_t = nlohmann::json::number_float_t;
  using string_t = nlohmann::json::string_t;
  using binary_t = nlohmann::json::binary_t;

  bool null() { return take({}); }
  bool boolean(bool value) { return take(value); }
  bool number_integer(number_integer_t value) { return take(static_cast<double>(value)); }
  bool number_unsigned(number_unsigned_t value) { return take(static_cast<double>(value)); }
  bool number_float(number_float_t value, const string_t&) { return take(value); }
  bool string(string_t& value) { return take(std::move(value)); }
  bool binary(binary_t&) { return take({}); }
  bool start_object(std::size_t) {
    if (depth_ == 0) is_object_ = true;
    const bool settings = depth_ == 1 && is_object_ && key_ == kSettings;
    if (!settings) take({});
    in_settings_ = in_settings_ || settings;
    ++depth_;
    return true;
  }
  bool start_array(std::size_t) {
    take({});
    ++depth_;
    return true;
  }
  bool end_object() { return end(); }
  bool end_array() { return end(); }
  bool key(string_t& value) {
    if (depth_ == 1 || isSetting()) key_ = std::move(value);
    return true;
  }
  bool parse_error(std::size_t position, const std::string&, const nlohmann::json::exception&) {
    problems_.push_back(fmt::format("broken at byte {}, what follows is left out", position));
    return false;
  }

  SurveyNotes notes;
  std::string problem() const {
    if (!is_object_ && problems_.empty()) return "these are no notes";
    const auto told = problems_.begin() + static_cast<std::ptrdiff_t>(std::min(kProblemsTold, problems_.size()));
    auto text = fmt::format("{}", fmt::join(problems_.begin(), told, "; "));
    if (told != problems_.end()) text += fmt::format("; and {} more", problems_.end() - told);
    return text;
  }

 private:
  bool isSetting() const { return depth_ == 2 && in_settings_; }
  bool end() {
    if (--depth_ == 1) in_settings_ = false;
    return true;
  }
  bool take(Value value) {
    std::string problem;
    if (isSetting()) {
      problem = takeSetting(std::move(value));
    } else if (depth_ == 1 && is_object_) {
      if (const auto* field = findNote(key_)) problem = kalmira::take(notes, *field, value);
      if (key_ == kSettings) problem = "settings is no list of names and values";
    }
    if (!problem.empty()) problems_.push_back(std::move(problem));
    return true;
  }
  std::string takeSetting(Value value) {
    if (!findField(key_)) return {};
    auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) return fmt::format("setting {} is no text", key_);
    if (auto problem = textProblem("setting " + key_, *text); !problem.empty()) return problem;
    auto& all = notes.settings;
    const auto before = std::find_if(all.begin(), all.end(), [&](const auto& item) { return item.first == key_; });
    if (before != all.end()) all.erase(before);
    all.emplace_back(key_, std::move(*text));
    return {};
  }

  std::size_t depth_ = 0;
  bool is_object_ = false;
  bool in_settings_ = false;
  std::string key_;
  std::vector<std::string> problems_;
};

}  // namespace

std::span<const NotesField> notesFields() { return kFields; }

std::string noteText(const SurveyNotes& notes, const NotesField& field) {
  return std::visit(
      [&](auto member) -> std::string {
        const auto& value = notes.*member;
        if constexpr (std::is_same_v<std::remove_cvref_t<decltype(value)>, std::string>) {
          return value;
        } else {
          return value ? fmt::format("{}", *value) : std::string{};
        }
      },
      field.member);
}

std::string setNote(SurveyNotes& notes, std::string_view name, std::string_view text) {
  const auto* field = findNote(name);
  if (field == nullptr || !field->asked) return fmt::format("there is no note \"{}\"", printable(name));
  const auto* number = std::get_if<std::optional<double> SurveyNotes::*>(&field->member);
  if (number == nullptr) return take(notes, *field, std::string(text));
  if (text.empty()) {
    (notes.**number).reset();
    return {};
  }
  const auto value = wholeNumber<double>(text);
  if (!value) return fmt::format("\"{}\" is no number for {}", printable(text), name);
  return take(notes, *field, *value);
}

std::string setNote(SurveyNotes& notes, std::string_view fieldAndValue) {
  const auto equals = fieldAndValue.find('=');
  if (equals == std::string_view::npos) return "a note is FIELD=VALUE";
  return setNote(notes, fieldAndValue.substr(0, equals), fieldAndValue.substr(equals + 1));
}

SurveyNotes askedNotes(const SurveyNotes& notes) {
  SurveyNotes asked;
  for (const auto& field : kFields) {
    if (field.asked) std::visit([&](auto member) { asked.*member = notes.*member; }, field.member);
  }
  return asked;
}

std::vector<std::pair<std::string, std::string>> settingsForNotes(const Settings& settings, Kind kind, bool iceOption) {
  std::vector<std::pair<std::string, std::string>> all;
  for (const auto& field : settingsFields()) {
    if (!fieldApplies(field, kind, iceOption)) continue;
    const auto size = fieldSize(field);
    for (std::size_t i = 0; i < size; ++i) {
      auto name = size == 1 ? std::string(field.name) : fmt::format("{}[{}]", field.name, i);
      all.emplace_back(std::move(name), fieldText(settings, field, i));
    }
  }
  return all;
}

std::filesystem::path notesPathBeside(const std::filesystem::path& dataFile) {
  auto path = dataFile;
  path += ".json";
  return path;
}

std::filesystem::path lastNotesPath(const SettingsPlace& place) {
  return settingsFileOf(place).parent_path() / "NOTES.json";
}

std::optional<SurveyNotes> readNotes(const std::filesystem::path& path, std::string& problem) {
  problem.clear();
  const auto text = readSmallFile(path);
  if (!text) {
    std::error_code error;
    const bool missing = std::filesystem::symlink_status(path, error).type() == std::filesystem::file_type::not_found;
    if (!missing) problem = "Cannot read the notes in " + path.string();
    return std::nullopt;
  }
  auto notes = parseNotes(*text, problem);
  if (!problem.empty()) problem = fmt::format("Notes left out, {}: {}", path.string(), problem);
  return notes;
}

SurveyNotes parseNotes(std::string_view text, std::string& problem) {
  Reader reader;
  nlohmann::json::sax_parse(text, &reader);
  problem = reader.problem();
  return std::move(reader.notes);
}

std::optional<SurveyNotes> readNotesBeside(const std::filesystem::path& dataFile, std::string& problem) {
  return readNotes(notesPathBeside(dataFile), problem);
}

std::string formatNotes(const SurveyNotes& notes) {
  auto json = nlohmann::ordered_json::object();
  for (const auto& field : kFields) {
    std::visit(
        [&](auto member) {
          const auto& value = notes.*member;
          if constexpr (std::is_same_v<std::remove_cvref_t<decltype(value)>, std::string>) {
            if (!value.empty()) json[std::string(field.name)] = value;
          } else {
            if (value) json[std::string(field.name)] = *value;
          }
        },
        field.member);
  }
  if (!notes.settings.empty()) {
    auto& settings = json[std::string(kSettings)] = nlohmann::ordered_json::object();
    for (const auto& [name, value] : notes.settings) settings[name] = value;
  }
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::string writeNotes(const std::filesystem::path& path, const SurveyNotes& notes) {
  const auto problem = replaceFile(path, formatNotes(notes));
  return problem.empty() ? problem : "Cannot write " + path.string() + ": " + problem;
}

}  // namespace kalmira
