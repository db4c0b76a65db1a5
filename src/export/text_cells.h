#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "export/cells.h"

namespace kalmira {

// Cells of a format that is text. `Form` says how one looks: number(append) and word(append), where `append` appends
// the value to the string it gets, nothing where there is none; text(string_view) for what stands in a file.
template <typename Form>
class TextCells {
 public:
  explicit TextCells(Form made) : form(std::move(made)) {}

  void none() {
    form.number([](std::string&) {});
  }
  void text(std::string_view cell) { form.text(cell); }
  void integer(std::int64_t value) {
    form.number([=](std::string& text) { appendInteger(text, value); });
  }
  void real(double value, int decimals) {
    form.number([=](std::string& text) { appendReal(text, value, decimals); });
  }
  template <typename Real>
  void shortest(Real value) {
    form.number([=](std::string& text) { appendShortest(text, value); });
  }
  void range(int first, int second) {
    if (first == 0 && second == 0) return none();
    form.word([=](std::string& text) {
      if (first != 0) appendInteger(text, first);
      if (second != 0) appendInteger(text += '/', second);
    });
  }
  // A day has many readings.
  void date(std::int64_t day) {
    if (day_ != day) appendDate(date_ = {}, day);
    day_ = day;
    form.word([this](std::string& text) { text += date_; });
  }
  void timeOfDay(std::uint32_t ms) {
    form.word([=](std::string& text) { appendTimeOfDay(text, ms); });
  }
  void utc(double moment) {
    form.word([=](std::string& text) { appendUtc(text, moment); });
  }

  Form form;

 private:
  std::optional<std::int64_t> day_;  // of `date_`
  std::string date_;
};

}  // namespace kalmira
