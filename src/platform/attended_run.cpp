#include "platform/attended_run.h"

#include <fmt/format.h>
#include <unistd.h>

#include "platform/text.h"

namespace kalmira {
namespace {

constexpr std::uint32_t kShownFromMs = 2000;
constexpr std::uint32_t kShownEveryMs = 500;
constexpr std::size_t kNameWidth = 40;  // a line that wraps would not go away whole

}  // namespace

AttendedRun::AttendedRun(std::string_view program, const Clock& clock, int descriptor)
    : program_(program),
      clock_(clock),
      descriptor_(descriptor),
      terminal_(::isatty(descriptor) == 1),
      shown_at_(clock.tick()) {}

bool AttendedRun::goOn(std::string_view name, std::uint64_t done, std::uint64_t total) {
  if (terminal_ && ticksSince(clock_.tick(), shown_at_) >= (shown_ ? kShownEveryMs : kShownFromMs)) {
    shown_at_ = clock_.tick();
    shown_ = true;
    const double part = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 0;
    write(fmt::format("\r\033[K{}: {:.0f} % of {:.0f} MB", firstCharacters(name, kNameWidth), 100 * part,
                      static_cast<double>(total) / 1e6));
  }
  return !signals_ || !signals_->wanted();
}

void AttendedRun::say(std::string_view text) {
  clear();
  write(fmt::format("{}: {}\n", program_, text));
}

void AttendedRun::clear() {
  if (shown_) write("\r\033[K");
  shown_ = false;
}

// What nobody can read must not end the run.
void AttendedRun::write(std::string_view text) const { (void)!::write(descriptor_, text.data(), text.size()); }

}  // namespace kalmira
