#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

namespace kalmira {

// A short beep, told from others by its pitch.
struct Tone {
  int hertz = 1000;
  int milliseconds = 80;
  int times = 1;  // with as long a pause between two
};

inline constexpr int kToneRate = 22050;  // samples a second, one channel
std::vector<std::int16_t> samplesOf(const Tone& tone);

// Whatever makes samples heard. Used on one thread.
class SoundDevice {
 public:
  SoundDevice() = default;
  SoundDevice(const SoundDevice&) = delete;
  SoundDevice& operator=(const SoundDevice&) = delete;
  virtual ~SoundDevice() = default;
  // Returns when they have been played. False: they have not.
  virtual bool play(std::span<const std::int16_t> samples) = 0;
};
using SoundFactory = std::function<std::unique_ptr<SoundDevice>()>;

// The system's usual sound device; nullptr when there is none, or none that opens. Its library is loaded only here:
// machines without sound need not have it.
std::unique_ptr<SoundDevice> openSystemSound();

// Plays tones on a thread of its own, so that a sound server that hangs holds nobody up.
class TonePlayer {
 public:
  // `failed` is called whenever a tone cannot be played, on the player's thread or on that of play.
  TonePlayer(SoundFactory factory, std::function<void()> failed);
  ~TonePlayer();
  TonePlayer(const TonePlayer&) = delete;
  TonePlayer& operator=(const TonePlayer&) = delete;

  // Returns at once. When several tones wait already, one more is left out: a beep that comes late says nothing.
  void play(const Tone& tone);

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace kalmira
