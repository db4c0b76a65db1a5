#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <limits>

#include "instruments/catalogue.h"
#include "sim/encode.h"
#include "sim/player.h"
#include "sim/replay.h"
#include "sim/survey.h"
#include "sim/terminal_outlet.h"
#include "support/temp_folder.h"

namespace kalmira::sim {
namespace {

constexpr double kForever = std::numeric_limits<double>::infinity();

// Notes what happens when, in tenths of a second: "3i" a record, "3g" a sentence, "3-" unplugged, "3+"
// plugged.
struct Recorder final : Pace, Outlet {
  bool waitUntil(double time_s) override {
    now_s = time_s;
    return time_s < stop_s;
  }
  void send(Port port, std::string_view bytes, double) override {
    note(port == Port::gps ? 'g' : 'i');
    sent += bytes;
  }
  void unplug() override { note('-'); }
  std::string plug() override { return note('+'), std::string(); }
  void note(char what) { log += fmt::format("{:.0f}{} ", now_s * 10, what); }

  double now_s = 0, stop_s = kForever;
  std::string log, sent;
};

// `count` records, one every 0.1 s; every third is a sentence.
TransmissionSource ticking(int count) {
  return [count, i = 0]() mutable -> std::optional<Transmission> {
    if (i == count) return std::nullopt;
    const auto number = i++;
    return Transmission{number / 10.0, number % 3 == 2 ? Port::gps : Port::instrument, std::string(100, 'x')};
  };
}

TEST(Player, FaultsFallWhereTheyAreAsked) {
  struct Row {
    const char* what;
    Faults faults;
    double end_s, stop_s;
    std::string expected;
  };
  for (const auto& row : std::initializer_list<Row>{
           {"no faults, to the end of the source", {}, kForever, kForever, "0i 1i 2g 3i 4i 5g "},
           {"an end", {}, 0.3, kForever, "0i 1i 2g "},
           {"stopped", {}, kForever, 0.2, "0i 1i "},
           {"silence", {.silence = {{0.1, 0.15}, {0.45, 0.1}}}, kForever, kForever, "0i 3i 4i "},
           {"unplugged", {.unplug = {{0.15, 0.2}}}, kForever, kForever, "0i 1i 2- 4+ 4i 5g "},
           {"overlapping", {.unplug = {{0.1, 0.2}, {0.2, 0.25}}}, kForever, kForever, "0i 1- 4+ 5g "},
           {"unplugged for no time", {.unplug = {{0.1, 0}}}, 0.2, kForever, "0i 1i "},
           {"ended while unplugged", {.unplug = {{0.1, 9}}}, 0.4, kForever, "0i 1- "}}) {
    Recorder recorder;
    recorder.stop_s = row.stop_s;
    EXPECT_EQ(play(ticking(6), row.faults, row.end_s, recorder, recorder), "") << row.what;
    EXPECT_EQ(recorder.log, row.expected) << row.what;
  }
}

TEST(Player, NoiseHitsItsShareOfTheBytesAndIsRepeatable) {
  std::vector<std::string> runs;
  for (const std::uint64_t seed : {1U, 1U, 2U}) {
    Recorder recorder;
    play(ticking(200), {.seed = seed, .noise = 0.05}, kForever, recorder, recorder);
    runs.push_back(recorder.sent);
  }
  const auto hit = runs[0].size() - static_cast<std::size_t>(std::count(runs[0].begin(), runs[0].end(), 'x'));
  EXPECT_NEAR(static_cast<double>(hit), 1000, 150);
  EXPECT_EQ(runs[0], runs[1]);
  EXPECT_NE(runs[0], runs[2]);
}

TEST(Replay, PlaysReadingsAndSentencesAtTheirTicks) {
  const TempFolder folder;
  const auto path = (folder.path() / "survey").string();
  const std::string gga = "$GPGGA,080000.00,5924.75000,N,02444.16593,E,1,09,1.1,34.2,M,18.0,M,,*55";
  writeFile(path, formatHeader1({.kind = Kind::tesk}) + formatNote(24, tag::kEvent, "$STARTED", 900) +
                      formatReading(24, "T$-1000", 4294967290U) + formatReading(24, "3$-1001-0500", 85) +
                      formatGpsSentence(24, gga, 44, tag::kGpsFirst, tag::kGpsMore) + "T$-10");
  Replay replay(0.5);
  ASSERT_EQ(replay.open(path), "");
  std::string played;
  while (const auto piece = replay.next()) {
    played += fmt::format("{:.0f} {} {}|", piece->time_s * 1000, piece->port == Port::gps ? 'g' : 'i', piece->bytes);
  }
  EXPECT_EQ(played, "0 i T$-1000\r|182 i T$-1001-0500\r|182 g " + gga + "\r\n|");
  EXPECT_EQ(replay.error(), "");
}

TEST(Survey, OneSeedGivesOneSurvey) {
  for (int kind = 0; kind < kKindCount; ++kind) {
    const auto* instrument = findInstrument(kind);
    auto plan = naturalPlan(instrument->kind, instrument->instrumentLength);
    plan.sentencePeriod_s = 0.1;
    auto other = plan;
    other.seed = 2;
    int different = 0;
    for (std::uint64_t i = 0; i < 200; ++i) {
      EXPECT_EQ(recordAt(plan, i), recordAt(SurveyPlan(plan), i)) << kind;
      EXPECT_EQ(sentenceAt(plan, i), sentenceAt(SurveyPlan(plan), i)) << kind;
      different += recordAt(plan, i) != recordAt(other, i) ? 1 : 0;
    }
    EXPECT_GT(different, 20) << kind;
  }
}

// Half a count of the range that a value needs: never finer than `finest`, else a share of the value.
struct Precision {
  double finest;
  double share;
  double of(double value) const { return std::max(finest, std::abs(value) * share) * 1.001 + 1e-5; }
};

TEST(Encode, DecodesBackToTheValues) {
  struct Row {
    Kind kind;
    std::function<std::string(Stance, double, double)> encode;
    Precision conductivity, inphase;
  };
  const Precision anything{1e9, 0};  // not in the record
  const auto conductivityOf = [](Stance s, double c, double) { return encodeTesk(s, Component::conductivity, c, 7); };
  const auto inphaseOf = [](Stance s, double, double i) { return encodeTesk(s, Component::inphase, i, 12); };
  const auto vardo = [](Stance s, double c, double) { return encodeVardo(s, 20, c); };
  for (const auto& row : {Row{Kind::orla, encodeOrla, {0.00125, 1.0 / 800}, {0.00125, 0}},
                          Row{Kind::teskb, encodeTeskb, {0.05, 1.0 / 200}, {0.00144, 1.0 / 200}},
                          Row{Kind::tesk, conductivityOf, {0.00625, 1.0 / 200}, anything},
                          Row{Kind::tesk, inphaseOf, anything, {0.00018, 1.0 / 200}},
                          Row{Kind::vardo, vardo, {0.000375, 1.0 / 2000}, anything},
                          Row{Kind::mirka, encodeMirka, {0.125, 1.0 / 8}, {0.125, 0}}}) {
    for (const int stance : {0, 1, 2, 3}) {
      for (const double conductivity :
           {-76.5, -3.3, 0.0, 0.37, 2.9, 9.99, 12.4, 12.6, 99.0, 101.0, 124.9, 512.0, 999.0}) {
        for (const double inphase : {-5.5, -0.2, 0.0, 0.31, 0.37, 2.87, 2.89, 7.4}) {
          const auto record = row.encode({.vertical = stance % 2 == 0, .pressed = stance > 1}, conductivity, inphase);
          SCOPED_TRACE(record);
          const auto reading = instrumentOf(row.kind).decode(record, {});
          EXPECT_NEAR(reading.conductivity, conductivity, row.conductivity.of(conductivity));
          EXPECT_NEAR(reading.inphase, row.kind == Kind::vardo ? 20 : inphase, row.inphase.of(inphase));
          EXPECT_EQ(reading.orientation, stance % 2 == 0 ? 'V' : 'H');
          EXPECT_EQ(reading.secondMode, stance > 1 ? 'M' : 'N');
        }
      }
    }
  }
}

TEST(Encode, Tesk2DecodesBackAndNeverLooksEnded) {
  for (int step = 0; step < 3000; ++step) {
    const double conductivity = -1200 + 0.8 * step;
    const Tesk2Values values{conductivity, -34 + step * 0.0226, conductivity / 3, -8.6 + step * 0.0057, 31, 31};
    const Stance stance{.vertical = step % 2 == 0};
    const auto record = encodeTesk2(stance, values);
    EXPECT_EQ(terminated(Framing::tesk2, record).find("\xFF\xFF"), 14U);
    const auto reading = instrumentOf(Kind::tesk2).decode(record, {});
    const auto& channels = reading.channels;
    const std::size_t slot = stance.vertical ? 0 : 1;
    EXPECT_NEAR(channels.value[slot], values.conductivity1, 0.0197);
    EXPECT_NEAR(channels.value[slot + 2], values.inphase1, 0.00058);
    EXPECT_NEAR(channels.value[slot + 4], values.conductivity2, 0.0197);
    EXPECT_NEAR(channels.value[slot + 6], values.inphase2, 0.00016);
    EXPECT_EQ(reading.secondMode, 'N');
  }
}

struct TerminalTest : testing::Test {
  TempFolder folder;
  std::filesystem::path link = folder.path() / "instrument";
  std::FILE* names = std::fopen((folder.path() / "names").c_str(), "w");
  ~TerminalTest() override { std::fclose(names); }

  // What arrives until the line has been still for 50 ms.
  static std::string arrived(int line) {
    std::string text;
    pollfd wait{.fd = line, .events = POLLIN, .revents = 0};
    char bytes[512];
    while (::poll(&wait, 1, 50) > 0) {
      const auto count = ::read(line, bytes, sizeof bytes);
      if (count <= 0) return text + "<hung up>";
      text.append(bytes, static_cast<std::size_t>(count));
    }
    return text;
  }
  // The kernel hands bytes over in its own time.
  static bool arrives(TerminalOutlet& outlet, std::string_view bytes, double time_s) {
    outlet.send(Port::instrument, bytes, time_s);
    for (int i = 0; i < 1000 && outlet.caughtUp(); ++i) ::usleep(1000);
    return !outlet.caughtUp();
  }
};

TEST_F(TerminalTest, BytesArriveThroughTheLinkAsTheyAre) {
  std::filesystem::create_symlink("/nowhere", link);  // left behind by an earlier run
  TerminalOutlet outlet(link, {}, names);
  ASSERT_EQ(outlet.plug(), "");
  EXPECT_TRUE(readFile(folder.path() / "names")
                  .starts_with(fmt::format("instrument {}\ngps /dev/", std::filesystem::read_symlink(link).string())));
  const std::string record("T\x06\0\r\n\x11\x13\x04\x7F\xFF\x03", 11);
  ASSERT_TRUE(arrives(outlet, record, 0));
  const int line = ::open(link.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_EQ(arrived(line), record);
  // A late second reader of a line that nobody has read for long gets only what is new.
  for (int i = 1; i <= 6; ++i) ASSERT_TRUE(arrives(outlet, "old", i));
  outlet.send(Port::instrument, "new", 7);
  EXPECT_EQ(arrived(line), "new");
  outlet.unplug();
  EXPECT_FALSE(std::filesystem::exists(std::filesystem::symlink_status(link)));
  EXPECT_EQ(arrived(line), "<hung up>");
  ASSERT_EQ(outlet.plug(), "");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  ::close(line);
}

TEST_F(TerminalTest, LinksNeverReplaceFilesNorRemoveForeignLinks) {
  writeFile(link, "precious");
  TerminalOutlet refused(link, {}, names);
  EXPECT_NE(refused.plug().find("left alone"), std::string::npos);
  EXPECT_EQ(readFile(link), "precious");
  std::filesystem::remove(link);
  {
    TerminalOutlet outlet(link, {}, names);
    ASSERT_EQ(outlet.plug(), "");
    std::filesystem::remove(link);
    std::filesystem::create_symlink("/dev/null", link);  // another simulator took it over
  }
  EXPECT_EQ(std::filesystem::read_symlink(link), "/dev/null");
}

}  // namespace
}  // namespace kalmira::sim
