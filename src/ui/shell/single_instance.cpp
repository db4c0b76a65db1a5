#include "ui/shell/single_instance.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QLockFile>
#include <QSocketNotifier>
#include <QSysInfo>
#include <QThread>
#include <algorithm>
#include <optional>
#include <system_error>
#include <utility>

#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr int kTries = 20;  // the first may be between its lock and its socket
constexpr int kTryMs = 100;
constexpr std::size_t kLongestWord = 8192;

std::filesystem::path canonicalRoot(const std::filesystem::path& root) {
  std::error_code error;
  std::filesystem::create_directories(root, error);
  auto canonical = std::filesystem::canonical(root, error);
  return error ? root.lexically_normal() : canonical;
}

// Another user's program can neither be raised nor mistaken for ours.
std::string socketPath(const std::filesystem::path& root) {
  const auto text = fmt::format("{}\n{}", ::getuid(), root.string());
  const auto hash = QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256);
  return QDir::tempPath().toStdString() + "/kalmira-" + hash.toHex().left(24).toStdString();
}

// A socket of datagrams: a word comes whole or not at all, and what a crashed program has left takes none. Plain calls,
// because Qt's network library and the eleven that it brings along are loaded at each start.
class WordSocket {
 public:
  explicit WordSocket(const std::string& path) : fd_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
    address_.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address_.sun_path)) closeNow();
    if (fd_ >= 0) std::copy(path.begin(), path.end(), address_.sun_path);
  }
  WordSocket(const WordSocket&) = delete;
  WordSocket& operator=(const WordSocket&) = delete;
  ~WordSocket() { closeNow(); }

  int descriptor() const { return fd_; }

  // To the program that listens there.
  bool say(const std::string& word) const {
    struct stat found {};
    if (fd_ < 0 || ::lstat(address_.sun_path, &found) != 0 || found.st_uid != ::getuid()) return false;
    return ::sendto(fd_, word.data(), std::min(word.size(), kLongestWord), MSG_NOSIGNAL, address(), sizeof address_) >=
           0;
  }

  bool listen() {
    if (fd_ < 0) return false;
    // Nobody answered there: what stands under the name is a crashed program's.
    ::unlink(address_.sun_path);
    listens_ = ::fchmod(fd_, S_IRUSR | S_IWUSR) == 0 && ::bind(fd_, address(), sizeof address_) == 0;
    return listens_;
  }

  // The next word that has come.
  std::optional<std::string> hear() const {
    std::string word(kLongestWord, '\0');
    const auto size = ::recv(fd_, word.data(), word.size(), 0);
    if (size < 0) return std::nullopt;
    word.resize(static_cast<std::size_t>(size));
    return word;
  }

 private:
  const sockaddr* address() const { return reinterpret_cast<const sockaddr*>(&address_); }
  void closeNow() {
    if (listens_) ::unlink(address_.sun_path);
    if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  }

  int fd_;
  sockaddr_un address_{};
  bool listens_ = false;
};

// The root lies on a disk that machines share: whoever holds it there is out of reach.
bool heldElsewhere(const QLockFile& lock) {
  qint64 pid = 0;
  QString host;
  QString application;
  return lock.getLockInfo(&pid, &host, &application) && host != QSysInfo::machineHostName();
}

enum class Holding { lock, nothing, refused };

Holding takeRoot(QLockFile& lock, const WordSocket& socket, const std::string& word) {
  for (int tries = 0; tries < kTries; ++tries) {
    if (lock.tryLock(0)) return Holding::lock;
    const bool held = lock.error() == QLockFile::LockFailedError;
    if (socket.say(word)) return Holding::refused;
    if (!held || heldElsewhere(lock)) return Holding::nothing;
    QThread::msleep(kTryMs);
  }
  // It lives, but does not answer: still two may not work in one folder.
  return Holding::refused;
}

}  // namespace

struct SingleInstance::State {
  explicit State(const std::filesystem::path& root)
      : lock(qtText((root / ".kalmira.lock").string())), socket(socketPath(root)) {
    lock.setStaleLockTime(0);  // a survey may take days
  }

  QLockFile lock;
  WordSocket socket;
  std::optional<QSocketNotifier> notifier;
  bool first = false;
};

SingleInstance::SingleInstance(const std::filesystem::path& root, const std::string& word,
                               std::function<void(const std::string&)> raise)
    : state_(std::make_unique<State>(canonicalRoot(root))) {
  auto& state = *state_;
  state.first = takeRoot(state.lock, state.socket, word) != Holding::refused;
  // Without its socket the program can be used all the same; a second one ends without raising it.
  if (!state.first || !state.socket.listen()) return;
  state.notifier.emplace(state.socket.descriptor(), QSocketNotifier::Read);
  QObject::connect(&*state.notifier, &QSocketNotifier::activated, &*state.notifier, [&state, wake = std::move(raise)] {
    while (const auto heard = state.socket.hear()) wake(*heard);
  });
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::isFirst() const { return state_->first; }

}  // namespace kalmira
