#include "platform/tone.h"

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <deque>
#include <numbers>
#include <utility>

#include "platform/worker.h"

namespace kalmira {
namespace {

constexpr double kLoudness = 0.6;  // of what a sample holds
constexpr int kRampSamples = 110;  // 5 ms up and down: without them every beep clicks
constexpr std::size_t kMostWaiting = 3;
// A device is let go when nothing was played for so long: others may want it.
constexpr std::chrono::milliseconds kKeepOpen{3000};
// One that did not open is not tried for so long: a try may take a while.
constexpr std::chrono::milliseconds kRetry{10000};
constexpr std::chrono::milliseconds kEndWait{500};

struct Pcm;

// What is used of the sound library, ALSA's; its functions by their names there.
struct SoundLibrary {
  int (*open)(Pcm** pcm, const char* name, int stream, int mode) = nullptr;
  int (*setParams)(Pcm*, int format, int access, unsigned channels, unsigned rate, int resample,
                   unsigned latencyMicroseconds) = nullptr;
  long (*write)(Pcm*, const void* samples, unsigned long frames) = nullptr;
  int (*prepare)(Pcm*) = nullptr;
  int (*drain)(Pcm*) = nullptr;
  int (*close)(Pcm*) = nullptr;
};

// What it finds wrong would go to standard error; a tone that cannot be played is told otherwise.
void saySilently(const char*, int, const char*, int, const char*, ...) {}

template <class Function>
bool findSound(void* handle, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(handle, name));
  return function != nullptr;
}

const SoundLibrary* soundLibrary() {
  // Kept until the program ends: what it started may outlive a device.
  static const auto kLibrary = []() -> std::unique_ptr<SoundLibrary> {
    void* handle = dlopen("libasound.so.2", RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) return nullptr;
    auto library = std::make_unique<SoundLibrary>();
    int (*setErrorHandler)(void (*)(const char*, int, const char*, int, const char*, ...)) = nullptr;
    const bool complete =
        findSound(handle, "snd_pcm_open", library->open) &&
        findSound(handle, "snd_pcm_set_params", library->setParams) &&
        findSound(handle, "snd_pcm_writei", library->write) && findSound(handle, "snd_pcm_prepare", library->prepare) &&
        findSound(handle, "snd_pcm_drain", library->drain) && findSound(handle, "snd_pcm_close", library->close) &&
        findSound(handle, "snd_lib_error_set_handler", setErrorHandler);
    if (!complete) return nullptr;
    setErrorHandler(saySilently);
    return library;
  }();
  return kLibrary.get();
}

class SystemSound final : public SoundDevice {
 public:
  SystemSound(const SoundLibrary& library, Pcm* pcm) : library_(library), pcm_(pcm) {}
  ~SystemSound() override { library_.close(pcm_); }
  bool play(std::span<const std::int16_t> samples) override {
    if (library_.prepare(pcm_) < 0) return false;
    while (!samples.empty()) {
      const long written = library_.write(pcm_, samples.data(), samples.size());
      if (written <= 0) return false;
      samples = samples.subspan(static_cast<std::size_t>(written));
    }
    return library_.drain(pcm_) >= 0;
  }

 private:
  const SoundLibrary& library_;
  Pcm* pcm_;
};

}  // namespace

std::vector<std::int16_t> samplesOf(const Tone& tone) {
  const int length = kToneRate * tone.milliseconds / 1000;
  std::vector<std::int16_t> samples;
  for (int n = 0; n < tone.times; ++n) {
    if (n > 0) samples.resize(samples.size() + static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
      const double ramp =
          std::min({1.0, static_cast<double>(i) / kRampSamples, static_cast<double>(length - i) / kRampSamples});
      const double wave = std::sin(2.0 * std::numbers::pi * tone.hertz * i / kToneRate);
      samples.push_back(static_cast<std::int16_t>(std::lround(32767.0 * kLoudness * ramp * wave)));
    }
  }
  return samples;
}

std::unique_ptr<SoundDevice> openSystemSound() {
  constexpr int kPlayback = 0;
  constexpr int kSigned16LittleEndian = 2;
  constexpr int kInterleaved = 3;
  constexpr unsigned kLatencyMicroseconds = 100000;
  const auto* library = soundLibrary();
  Pcm* pcm = nullptr;
  if (library == nullptr || library->open(&pcm, "default", kPlayback, 0) < 0) return nullptr;
  auto device = std::make_unique<SystemSound>(*library, pcm);
  if (library->setParams(pcm, kSigned16LittleEndian, kInterleaved, 1, kToneRate, 1, kLatencyMicroseconds) < 0) {
    return nullptr;
  }
  return device;
}

// Shared with the thread: one that hangs in the sound system is left to itself.
struct TonePlayer::State {
  SoundFactory factory;
  std::function<void()> failed;  // under the worker's lock; empty once the player has gone
  std::deque<Tone> waiting;      // likewise
  Worker worker{"tones"};

  void run();
  void tell() {
    const auto held = worker.lock();
    if (failed) failed();
  }
};

void TonePlayer::State::run() {
  std::unique_ptr<SoundDevice> device;
  auto retryAt = std::chrono::steady_clock::now();
  auto held = worker.lock();
  while (!worker.stopping()) {
    if (!worker.waitFor(held, kKeepOpen, [this] { return !waiting.empty(); })) {
      held.unlock();
      device.reset();
      held.lock();
      if (!worker.wait(held, [this] { return !waiting.empty(); })) break;
    }
    const Tone tone = waiting.front();
    held.unlock();
    if (device == nullptr && std::chrono::steady_clock::now() >= retryAt) {
      device = factory ? factory() : nullptr;
      retryAt = std::chrono::steady_clock::now() + kRetry;
    }
    if (device == nullptr || !device->play(samplesOf(tone))) {
      device.reset();
      tell();
    }
    held.lock();
    waiting.pop_front();  // it waited as long as it was played: the queue's length counts it
  }
}

TonePlayer::TonePlayer(SoundFactory factory, std::function<void()> failed) : state_(std::make_shared<State>()) {
  state_->factory = std::move(factory);
  state_->failed = std::move(failed);
}

TonePlayer::~TonePlayer() {
  state_->worker.change([this] { state_->failed = nullptr; });
  state_->worker.stopWithin(kEndWait);
}

void TonePlayer::play(const Tone& tone) {
  if (!state_->factory) return state_->failed();
  state_->worker.change([&] {
    if (state_->waiting.size() < kMostWaiting) state_->waiting.push_back(tone);
  });
  // Only with the first tone: most programs that hold a player never play one.
  if (!state_->worker.started()) state_->worker.start([state = state_] { state->run(); });
}

}  // namespace kalmira
