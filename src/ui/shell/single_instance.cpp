#include "ui/shell/single_instance.h"

#include <fmt/format.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QLocalServer>
#include <QLocalSocket>
#include <QLockFile>
#include <QSysInfo>
#include <QThread>
#include <system_error>

#include "ui/screen/theme.h"

namespace kalmira {
namespace {

constexpr int kTries = 20;  // the first may be between its lock and its socket
constexpr int kTryMs = 100;
constexpr qint64 kLongestWord = 8192;

std::filesystem::path canonicalRoot(const std::filesystem::path& root) {
  std::error_code error;
  std::filesystem::create_directories(root, error);
  auto canonical = std::filesystem::canonical(root, error);
  return error ? root.lexically_normal() : canonical;
}

// Another user's program can neither be raised nor mistaken for ours.
QString serverName(const std::filesystem::path& root) {
  const auto text = fmt::format("{}\n{}", ::getuid(), root.string());
  const auto hash = QCryptographicHash::hash(QByteArray::fromStdString(text), QCryptographicHash::Sha256);
  return QStringLiteral("kalmira-") + QString::fromLatin1(hash.toHex().left(24));
}

bool raiseOther(const QString& name, const std::string& word) {
  QLocalSocket socket;
  socket.connectToServer(name);
  if (!socket.waitForConnected(kTryMs)) return false;
  socket.write(word.data(), static_cast<qint64>(word.size()));
  while (socket.bytesToWrite() > 0 && socket.waitForBytesWritten(kTryMs)) {
  }
  socket.disconnectFromServer();
  return true;
}

// The word of another program is whole when that one has gone.
void hear(QLocalServer& server, const std::function<void(const std::string&)>& raise) {
  while (auto* socket = server.nextPendingConnection()) {
    const auto end = [socket, raise] {
      raise(socket->read(kLongestWord).toStdString());
      socket->deleteLater();
    };
    if (socket->state() == QLocalSocket::UnconnectedState) {
      end();
    } else {
      QObject::connect(socket, &QLocalSocket::disconnected, socket, end);
    }
  }
}

// The root lies on a disk that machines share: whoever holds it there is out of reach.
bool heldElsewhere(const QLockFile& lock) {
  qint64 pid = 0;
  QString host;
  QString application;
  return lock.getLockInfo(&pid, &host, &application) && host != QSysInfo::machineHostName();
}

enum class Holding { lock, nothing, refused };

Holding takeRoot(QLockFile& lock, const QString& name, const std::string& word) {
  for (int tries = 0; tries < kTries; ++tries) {
    if (lock.tryLock(0)) return Holding::lock;
    const bool held = lock.error() == QLockFile::LockFailedError;
    if (raiseOther(name, word)) return Holding::refused;
    if (!held || heldElsewhere(lock)) return Holding::nothing;
    QThread::msleep(kTryMs);
  }
  // It lives, but does not answer: still two may not work in one folder.
  return Holding::refused;
}

}  // namespace

struct SingleInstance::State {
  explicit State(const std::filesystem::path& root)
      : lock(qtText((root / ".kalmira.lock").string())), name(serverName(root)) {
    lock.setStaleLockTime(0);  // a survey may take days
  }

  QLockFile lock;
  QString name;
  QLocalServer server;
  bool first = false;
};

SingleInstance::SingleInstance(const std::filesystem::path& root, const std::string& word,
                               std::function<void(const std::string&)> raise)
    : state_(std::make_unique<State>(canonicalRoot(root))) {
  auto& state = *state_;
  state.first = takeRoot(state.lock, state.name, word) != Holding::refused;
  if (!state.first) return;
  QObject::connect(&state.server, &QLocalServer::newConnection, &state.server,
                   [&state, wake = std::move(raise)] { hear(state.server, wake); });
  // Nobody answered there: what is left of the name is a crashed program's.
  QLocalServer::removeServer(state.name);
  state.server.setSocketOptions(QLocalServer::UserAccessOption);
  // Without its socket the program can be used all the same; a second one ends without raising it.
  state.server.listen(state.name);
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::isFirst() const { return state_->first; }

}  // namespace kalmira
