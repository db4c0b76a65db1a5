#pragma once

#include <string_view>

#include "gps/nmea.h"

namespace kalmira {

// The latest checked position sentences, held in Manual mode for the reading they will belong to.
struct HeldSentences {
  GpsLine heldGga;
  GpsLine heldGsa;
  bool heldGgaReady = false;
  bool heldGsaReady = false;

  // Keeps a checked sentence when it is a GGA or a GSA, in place of the one before. True when it was one.
  bool hold(const GpsLine& line) {
    if (line.text.find("GGA") != std::string::npos) {
      heldGga = line;
      heldGgaReady = true;
      return true;
    }
    if (line.text.find("GSA") != std::string::npos) {
      heldGsa = line;
      heldGsaReady = true;
      return true;
    }
    return false;
  }
};

}  // namespace kalmira
