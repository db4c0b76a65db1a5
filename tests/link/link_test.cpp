#include <gmock/gmock.h>

#include <algorithm>
#include <limits>

#include "link/com_devices.h"
#include "link/device_claim.h"
#include "link/readers.h"
#include "support/fake_port.h"
#include "support/temp_folder.h"

namespace kalmira {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

struct ReadersTest : testing::Test {
  FakeClock clock;
  std::atomic<bool> stop{false};
  FakeDevice device{.clock = &clock, .stop = &stop};
  FakePort port{device};
  LinkState link;
  ReaderContext context{port, link, clock, stop};
  std::vector<std::string> handed;
  bool goOn = true;
  const RecordHandOver handOver = [this] {
    handed.emplace_back(link.record());
    EXPECT_EQ(link.recordText[static_cast<std::size_t>(link.recordLength)], '\0');
    EXPECT_EQ(link.recordCount, 0);
    return goOn;
  };

  void play(std::deque<LineStep> steps) {
    stop = false;
    handed.clear();
    device.steps = std::move(steps);
    device.trace.clear();
  }
  auto purges() const {
    return std::count_if(device.trace.begin(), device.trace.end(), testing::Matches(testing::EndsWith("purge")));
  }
};

TEST_F(ReadersTest, GoodRecordsFillTheCountAndBadOnesUseItUp) {
  struct Case {
    std::string_view records;  // "g"ood and "b"ad
    int perReading, countLeft;
    std::size_t handOvers;
  };
  for (const auto& [records, perReading, countLeft, handOvers] :
       {Case{"g", 1, 0, 1}, Case{"b", 1, 0, 0}, Case{"ggg", 3, 0, 1}, Case{"ggb", 3, 0, 0}, Case{"gbg", 3, 0, 1},
        Case{"bbb", 3, 0, 0}, Case{"ggbgg", 3, 2, 0}, Case{"ggbggg", 3, 0, 1}, Case{"gg", 3, 2, 0},
        Case{"gggggg", 2, 0, 3}}) {
    std::string stream;
    for (const char c : records) stream += c == 'g' ? "T12345678901\r" : "X12345678901\r";
    link.recordsPerReading = perReading;
    link.recordCount = 99;
    play({{.bytes = stream}});
    InstrumentReaderAscii(context, Kind::vardo, handOver);
    EXPECT_EQ(handed.size(), handOvers) << records;
    EXPECT_EQ(link.recordCount, countLeft) << records;
  }
}

TEST_F(ReadersTest, AGoodRecordIsNotedAndARefusedHandOverOrAVanishedDeviceEndsTheReaderAtOnce) {
  link.missedTicks = 4;
  play({{.bytes = "T12345678901\r", .silenceMs = 250}, {.gone = true}});
  EXPECT_EQ(InstrumentReaderAscii(context, Kind::orla, handOver), ReaderEnd::gone);
  EXPECT_EQ(handed.size(), 1U);
  EXPECT_EQ(link.missedTicks, 0);
  EXPECT_EQ(link.lastRecordTick, 100250U);
  EXPECT_EQ(link.recordLength, 12);
  EXPECT_EQ(purges(), 1);
  goOn = false;
  play({{.bytes = "T12345678901\rT12345678901\r"}, {.bytes = "T12345678901\r"}});
  EXPECT_EQ(InstrumentReaderAscii(context, Kind::orla, handOver), ReaderEnd::stopped);
  EXPECT_EQ(handed.size(), 1U);
  EXPECT_EQ(device.steps.size(), 1U);
}

TEST_F(ReadersTest, AWrongByteOrALongPauseInAnIceRecordDropsAllThatHasArrived) {
  link.recordsPerReading = 2;
  play({{.bytes = "T12xT123I045T123I045"}, {.bytes = "T678I901"}});
  InstrumentReaderIce(context, handOver);
  EXPECT_THAT(handed, ElementsAre("T678I901"));  // the bad one took the first place
  EXPECT_EQ(purges(), 2);
  EXPECT_EQ(link.recordLength, 8);
  link.recordsPerReading = 1;
  // After the long pause the rest is a wrong byte of its own.
  for (const auto& [silenceMs, handOvers, purged] :
       {std::tuple{1900U, std::size_t{1}, 1}, std::tuple{2000U, std::size_t{0}, 3}}) {
    play({{.bytes = "T12"}, {.bytes = "3I045", .silenceMs = silenceMs}});
    InstrumentReaderIce(context, handOver);
    EXPECT_EQ(handed.size(), handOvers) << silenceMs;
    EXPECT_EQ(purges(), purged) << silenceMs;
  }
}

TEST_F(ReadersTest, Tesk2RecordsCarryTheMarkers) {
  struct Case {
    unsigned status;
    int keyPending, modeByte, expected;
    bool onInstrumentPort;
  };
  for (const auto& item :
       {Case{0, 0, 0x41, 0x41, true}, Case{kCtsOn, 0, 0x41, 0x51, true}, Case{kDsrOn, 2, 0x41, 0x59, true},
        Case{kCtsOn, 1, 0x41, 0x49, false}, Case{kRlsdOn, 1, 250, 18, true}}) {  // wraps
    link.markerLineState = 0;
    link.markerKeyPending = item.keyPending;
    play({{.bytes = std::string("T") + static_cast<char>(item.modeByte) + "345678901234\xff\xff",
           .status = item.status}});
    InstrumentReaderTesk2(context, item.onInstrumentPort, handOver);
    ASSERT_EQ(handed.size(), 1U);
    EXPECT_EQ(static_cast<unsigned char>(handed[0][1]), item.expected);
  }
}

TEST_F(ReadersTest, TheMarkerLineIsStoredWhenCtsChangesAndIsOffWhenItVanishes) {
  const int both = static_cast<int>(kDsrOn | kCtsOn);
  const int dsr = static_cast<int>(kDsrOn);
  std::vector<int> seen;  // at each read: what the step before left
  device.onRead = [&] { seen.push_back(link.markerLineState); };
  play({{.bytes = "x", .status = kDsrOn},
        {.bytes = "x", .status = kDsrOn | kCtsOn},
        {.bytes = "x", .status = kCtsOn},
        {.bytes = "x", .status = kDsrOn}});
  MarkerLineThread(context);
  EXPECT_THAT(seen, ElementsAre(0, 0, both, both, dsr));
  play({{.bytes = "x", .status = kCtsOn}, {.gone = true}});
  EXPECT_EQ(MarkerLineThread(context), ReaderEnd::gone);
  EXPECT_EQ(link.markerLineState, 0);
}

TEST_F(ReadersTest, ProbeKnowsTheTwoTeskStreams) {
  struct Case {
    std::string_view what;
    std::deque<LineStep> steps;
    int length;  // 0: not known
    std::uint32_t atMostMs;
  };
  device.stop = nullptr;
  for (const auto& [what, steps, length, atMostMs] : std::initializer_list<Case>{
           {"7 bytes", {{.bytes = "56\rT123456\r", .silenceMs = 100}}, 7, 200},
           {"12 bytes, in two parts", {{.bytes = "T1234"}, {.bytes = "5678901\r", .silenceMs = 90}}, 12, 200},
           {"9 bytes", {{.bytes = "T12345678\r"}}, 0, 200},
           {"silence", {}, 0, 2010},
           {"no start letter for 2 s", {{.bytes = "123\r", .silenceMs = 1500}}, 0, 2010},
           {"start letter just in time", {{.bytes = "T123456\r", .silenceMs = 1999}}, 7, 2010},
           {"no end for 1 s", {{.bytes = "T123456"}, {.bytes = "\r", .silenceMs = 1000}}, 0, 1010},
           {"gone", {{.bytes = "T1"}, {.gone = true}}, 0, 10}}) {
    SCOPED_TRACE(what);
    link.recordLength = 0;
    link.recordPeriodMs = 5.0F;
    device.steps = steps;
    const std::uint32_t start = clock.tick();
    EXPECT_EQ(ProbeTeskRecord(context), length != 0);
    EXPECT_EQ(link.recordLength, length == 0 ? 7 : length);
    EXPECT_EQ(link.recordPeriodMs, length == 0 ? 5.0F : length == 7 ? 72.0F : 91.0F);
    EXPECT_LE(clock.tick() - start, atMostMs);
  }
}

TEST(RecordRates, FollowTheIntervalWithinWhatTheStreamDelivers) {
  struct Row {
    float interval, period;
    int records, perSecond;
  };
  const float infinity = std::numeric_limits<float>::infinity(), nan = std::numeric_limits<float>::quiet_NaN();
  const int most = std::numeric_limits<int>::max();
  for (const auto& [interval, period, records, perSecond] :
       {Row{1.0F, 72.0F, 14, 1}, Row{1.0F, 91.0F, 11, 1}, Row{0.5F, 72.0F, 7, 2}, Row{0.2F, 100.0F, 2, 5},
        Row{10.0F, 50.0F, 200, 1}, Row{0.01F, 72.0F, 1, 14}, Row{0.0F, 91.0F, 1, 11}, Row{-1.0F, 91.0F, 1, 1},
        Row{nan, 91.0F, 1, 1}, Row{infinity, 91.0F, most, 1}, Row{1.0F, 0.0F, most, 1}, Row{0.01F, nan, 1, 1}}) {
    const RecordRates rates = recordRatesOf(interval, period);
    EXPECT_EQ(rates.recordsPerInterval, records) << interval << " s at " << period << " ms";
    EXPECT_EQ(rates.ratePerSecond, perSecond) << interval << " s at " << period << " ms";
  }
}

TEST(GpsLine, FollowsTheListsAndLeavesTheRestAsItIs) {
  using Parity::even, Parity::odd;
  struct Case {
    int dataBits, parity, stopBits;
    LineSettings line;  // without the rate
  };
  Settings settings;
  int index = -1;
  for (const std::optional<int> baud :
       {std::optional<int>(), {4800}, {9600}, {19200}, {38400}, {57600}, {115200}, {230400}, {460800}, {}}) {
    settings.gpsBaudIndex = index++;
    EXPECT_EQ(gpsPortLine(settings).baud, baud) << index;
  }
  for (const auto& item : {Case{1, 0, 0, {{}, 8, Parity::none, 1, true}}, Case{0, 1, 1, {{}, 7, even, 2, true}},
                           Case{1, 2, 0, {{}, 8, odd, 1, true}}, Case{2, 3, 2, {{}, {}, {}, {}, true}},
                           Case{-1, -1, -1, {{}, {}, {}, {}, true}}}) {
    settings.gpsDataBitsIndex = item.dataBits;
    settings.gpsParityIndex = item.parity;
    settings.gpsStopBitsIndex = item.stopBits;
    EXPECT_EQ(gpsPortLine(settings), item.line) << item.dataBits;
  }
}

const std::string kAdapter = "/dev/serial/by-id/usb-adapter-port0";
const std::vector<SerialDevice> kPresent{{"/dev/ttyUSB0", kAdapter, "USB adapter"}, {"/dev/ttyS0", "", ""}};

struct Case {
  const char* what;
  std::vector<std::pair<int, std::string>> assigned;  // COM number, device
  std::vector<std::string> present, first;            // of COM1 and on; the rest is empty
};

TEST(ComDevices, UnassignedNumbersTakeWhatIsLeftInOrderOfName) {
  std::vector<std::string> twenty, twelve;
  for (int i = 0; i < 20; ++i) twenty.push_back("/dev/ttyS" + std::to_string(i));
  twelve.assign(twenty.begin(), twenty.begin() + kComPorts);
  const std::string S0 = twenty[0], S1 = twenty[1], S2 = twenty[2], S10 = twenty[10], usb = "/dev/ttyUSB0";
  // Of the present ones, USB0 has a stable name.
  for (const auto& item : {Case{"nothing there", {}, {}, {}},
                           Case{"order of number, not of letters", {}, {S10, usb, S2}, {S2, S10, kAdapter}},
                           Case{"an assigned port is not given out again", {{2, S0}}, {S0, S1, S2}, {S1, S0, S2}},
                           Case{"assigned by its stable name", {{1, kAdapter}}, {usb, S1}, {kAdapter, S1}},
                           Case{"not there: the number waits for it", {{1, S1}, {3, S2}}, {S0}, {S1, S0, S2}},
                           Case{"more ports than numbers", {}, twenty, twelve}}) {
    ComAssignments assigned;
    std::vector<SerialDevice> present;
    for (const auto& [number, device] : item.assigned) assigned.at(static_cast<std::size_t>(number - 1)) = device;
    for (const auto& path : item.present) present.push_back({path, path == usb ? kAdapter : "", ""});
    auto wanted = item.first;
    wanted.resize(kComPorts);
    EXPECT_THAT(resolveComDevices(assigned, present), ElementsAreArray(wanted)) << item.what;
  }
}

TEST(ComDevices, LinksAreFollowed) {
  const TempFolder folder;
  const auto a = (folder.path() / "ttyA").string();
  const auto b = (folder.path() / "ttyB").string();
  const auto ids = folder.path() / "by-id";
  for (const auto& path : {a, b}) writeFile(path, "");
  std::filesystem::create_directory(ids);
  for (const auto& [link, to] : {std::pair{"usb-z", "../ttyB"}, {"usb-m", "../ttyB"}, {"usb-a", "../gone"}})
    std::filesystem::create_symlink(to, ids / link);
  EXPECT_EQ(stableNameOf(b, ids), (ids / "usb-m").string());
  EXPECT_EQ(stableNameOf(a, ids), "");
  // Assigned by a link of the user's own: the same port all the same.
  ComAssignments assigned;
  assigned[4] = (ids / "usb-z").string();
  const auto devices = resolveComDevices(assigned, {{a, "", ""}, {b, (ids / "usb-m").string(), ""}});
  EXPECT_TRUE(devices[0] == a && devices[1].empty() && devices[4] == assigned[4]);
}

TEST(DeviceTexts, SayWhatIsThereOrWhatIsInTheWay) {
  const DeviceLook look = [](const std::string& path) -> std::optional<PortError> {
    if (path != "/dev/ttyS0") return std::nullopt;
    return PortError{.kind = PortErrorKind::denied, .text = deniedText(path, "root", "dialout")};
  };
  for (const auto& [path, text] : {std::pair{kAdapter, "/dev/ttyUSB0, USB adapter"},
                                   {std::string(), "No device: connect one, or choose it at \"Devices...\""},
                                   {"/dev/ttyS0",
                                    "No permission: /dev/ttyS0 is for members of the group dialout: run \"sudo usermod "
                                    "-a -G dialout $USER\" and log in again"}}) {
    EXPECT_EQ(deviceTextOf(path, kPresent, look).text, text);
    EXPECT_EQ(deviceTextOf(path, kPresent, look).trouble, path != kAdapter) << path;
  }
  // Looking opens nothing.
  EXPECT_EQ(lookAtDevice("/dev/kalmira-nowhere").value().kind, PortErrorKind::missing);
  EXPECT_FALSE(lookAtDevice("/dev/null"));
}

TEST(DeviceTexts, ADeviceBelongsToOneNumber) {
  ComAssignments assigned;
  assignDevice(assigned, 1, "/dev/null");
  assignDevice(assigned, 12, "/dev/../dev/null");
  EXPECT_EQ(assigned[0], "");
  for (const auto& [number, device] : {std::pair{1, ""}, {13, "/dev/null"}}) assignDevice(assigned, number, device);
  EXPECT_EQ(assigned[11], "/dev/../dev/null");
  assignDevice(assigned, 12, "");
  EXPECT_EQ(assigned, ComAssignments{});
}

}  // namespace
}  // namespace kalmira
