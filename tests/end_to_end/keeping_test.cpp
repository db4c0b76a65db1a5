#include <arpa/inet.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <unistd.h>

#include "datafile/record_text.h"
#include "end_to_end/programs.h"

namespace kalmira {
namespace {

using testing::HasSubstr;

struct Kept : Survey {
  explicit Kept(const std::string& more = "") : Survey("ORLA", more) { EXPECT_EQ(logger.answer("go"), "ok"); }
  void readings(int from, int to) {
    for (int i = from; i <= to; ++i) EXPECT_TRUE(send(fmt::format("T${:+05d}-0800\r", i)));
    EXPECT_TRUE(logger.counted("readings", to));
  }
};

int readingsIn(const std::filesystem::path& path) { return countRecords(readFile(path), 24, "T"); }

// Whatever is done to the file, every reading is in the one where the survey went on, and in the second copy.
TEST(Keeping, AFileTakenAwayOrSwappedIsToldAndTheSurveyIsWholeElsewhere) {
  for (const std::string what : {"deleted", "root moved", "swapped", "cut"}) {
    SCOPED_TRACE(what);
    const TempFolder card;
    Kept survey("--mirror " + card.path().string());
    survey.readings(1, 5);
    const auto path = survey.path;
    if (what == "deleted") std::filesystem::remove(path);
    if (what == "root moved") std::filesystem::rename(survey.folder.path() / "Storage", survey.folder.path() / "away");
    if (what == "cut") std::filesystem::resize_file(path, 200);
    if (what == "swapped") {
      std::filesystem::remove(path);
      writeFile(path, "another survey");
    }
    for (int i = 6; i <= 9; ++i) EXPECT_TRUE(survey.send(fmt::format("T${:+05d}-0800\r", i)));
    const auto moved = survey.logger.nextLine("file ").substr(5);
    survey.logger.nextLine("notice with everything recorded so far.");
    survey.readings(10, 12);
    survey.logger.leave(3);
    EXPECT_EQ(readingsIn(moved), 12);
    EXPECT_EQ(readFile(card.path() / path.filename()), readFile(moved));
    if (what == "swapped") {
      EXPECT_EQ(readFile(path), "another survey");
    }
    EXPECT_THAT(survey.logger.output(), HasSubstr("\nnot whole: "));
  }
}

// A file system in memory for a card, in a slot that is the survey's storage folder. The slot is seen by this thread
// and the programs that it starts.
struct Card {
  Card(const TempFolder& machine, std::string slotPath)
      : card((machine.path() / "card").string()), slot(std::move(slotPath)) {
    std::filesystem::create_directories(card);
    std::filesystem::create_directories(slot);
    allowed = ::unshare(CLONE_NEWNS) == 0 && ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
              ::mount("none", card.c_str(), "tmpfs", 0, "size=4m") == 0;
  }
  ~Card() {
    pull();
    ::umount2(card.c_str(), MNT_DETACH);
  }
  bool put() const { return ::mount(card.c_str(), slot.c_str(), nullptr, MS_BIND, nullptr) == 0; }
  void pull() const { ::umount2(slot.c_str(), MNT_DETACH); }

  std::string card, slot;
  bool allowed = false;
};

// The survey goes on below the empty slot; when the card covers that again, its file is known for ours and is filled
// up.
TEST(Keeping, ACardThatIsPulledAndComesBackIsFilledUpForItHoldsOurFile) {
  const TempFolder machine;
  const Card card(machine, (machine.path() / "Kalmira").string());
  if (!card.allowed) GTEST_SKIP() << "nothing can be mounted here";
  ASSERT_TRUE(card.put());
  Kept survey("--root " + card.slot);
  survey.readings(1, 5);
  const auto onCard = card.card + survey.path.string().substr(card.slot.size());
  EXPECT_EQ(readingsIn(onCard), 5);
  std::filesystem::path moved;
  for (const bool back : {false, true}) {
    back ? (void)card.put() : card.pull();
    const int first = back ? 9 : 6;
    EXPECT_TRUE(survey.send(fmt::format("T${:+05d}-0800\r", first)));
    moved = survey.logger.nextLine("file ").substr(5);
    survey.logger.nextLine("notice with everything recorded so far.");
    survey.readings(first + 1, first + 2);
    EXPECT_EQ(readingsIn(moved), first + 2);
    EXPECT_GE(readingsIn(onCard), back ? 11 : 5);
  }
  survey.logger.leave(3);
}

// A server on this machine with one client at a time.
class Server {
 public:
  Server() : listening_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(::bind(listening_, reinterpret_cast<const sockaddr*>(&address), size), 0);
    EXPECT_EQ(::listen(listening_, 4), 0);
    EXPECT_EQ(::getsockname(listening_, reinterpret_cast<sockaddr*>(&address), &size), 0);
    port = ntohs(address.sin_port);
  }
  ~Server() {
    drop();
    ::close(listening_);
  }
  void drop() {
    if (client_ >= 0) ::close(client_);
    client_ = -1;
  }
  // To whoever is connected, waiting for him a moment.
  void send(std::string_view bytes) {
    pollfd wait{.fd = listening_, .events = POLLIN, .revents = 0};
    if (::poll(&wait, 1, client_ < 0 ? 100 : 0) == 1) {
      drop();
      client_ = ::accept(listening_, nullptr, nullptr);
    }
    if (client_ >= 0 && ::send(client_, bytes.data(), bytes.size(), MSG_NOSIGNAL) < 0) drop();
  }
  std::uint16_t port = 0;

 private:
  int listening_;
  int client_ = -1;
};

constexpr std::string_view kGga = "$GPGGA,092750.000,5321.6802,N,00630.3372,W,1,8,1.03,61.7,M,55.2,M,,*76\r\n";

TEST(Network, InstrumentAndReceiverOverTcpComeBackAsCablesDoAndReportsOfGpsdAreNoSentences) {
  const TempFolder folder;
  Server instrument, gpsd;
  Logger logger("ORLA", fmt::format("tcp://127.0.0.1:{}", instrument.port), folder.path(),
                fmt::format("--set surveyMode=1 --no-input --gps gpsd://127.0.0.1:{}", gpsd.port));
  const auto serve = [&] {
    instrument.send(kOrlaRecord);
    gpsd.send("{\"class\":\"VERSION\"}\r\n" + std::string(kGga));
  };
  const auto path = logger.file(serve);
  const auto sawMore = [&](int readings, int sentences) {
    for (int i = 0; i < 400; ++i) {
      serve();
      const auto content = readFile(path);
      if (countRecords(content, 24, "T") >= readings && countRecords(content, 24, "@?") >= sentences) return true;
      ::usleep(20000);
    }
    return false;
  };
  EXPECT_TRUE(sawMore(3, 3));
  instrument.drop();
  gpsd.drop();
  const auto content = readFile(path);
  EXPECT_TRUE(sawMore(countRecords(content, 24, "T") + 3, countRecords(content, 24, "@?") + 3));
  logger.signal(SIGTERM);
  EXPECT_EQ(logger.end(), 0) << logger.output();
  EXPECT_EQ(readFile(path).find("VERSION"), std::string::npos);
  for (const auto* wrong : {"--port tcp://", "--port gpsd://host", "--port tcp://h:0", "--marker tcp://h:1"}) {
    EXPECT_EQ(run(KALMIRA_LOG, std::string("--kind TESK2 --port /dev/null ") + wrong).status, 2) << wrong;
  }
}

TEST(Devices, OneDeviceUnderTwoNamesIsOneAndAReceiverThatComesLaterIsFound) {
  const Device device;
  const TempFolder folder;
  const auto link = folder.path() / "stable";
  std::filesystem::create_symlink(device.name, link);
  const auto both = run(KALMIRA_LOG, fmt::format("--kind ORLA --root {} --port {} --gps {}", folder.path().string(),
                                                 device.name, link.string()));
  EXPECT_EQ(both.status, 1);
  EXPECT_THAT(both.errors, HasSubstr("Same Port Assigned"));

  Device receiver;
  const auto later = folder.path() / "later";
  Kept survey("--gps " + later.string());
  std::filesystem::create_symlink(receiver.name, later);
  survey.logger.nextLine("notice GPS receiver is back");
  for (int i = 0; i < 100 && countRecords(readFile(survey.path), 24, "@?") == 0; ++i) {
    receiver.send(kGga);
    ::usleep(50000);
  }
  survey.logger.leave(countRecords(readFile(survey.path), 24, "@") > 0 ? 0 : 3);
}

}  // namespace
}  // namespace kalmira
