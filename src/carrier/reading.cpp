#include "carrier/reading.h"

#include "carrier/questions.h"

namespace tarnel {

CurrentHideout CurrentOf(const HideoutKey& key) {
  return {.CurrentCarrierPath = key.carrier,
          .CurrentCarrierName = key.carrierName,
          .CurrentHideoutTitle = key.title,
          .CurrentAlgorithmId = key.algorithm,
          .CurrentPassword = key.password,
          .SecondKey = {}};
}

void ReadingScreen::ShowFaults(const ChainFaults& faults) {
  Ask(DamageMessage(faults));
}

}  // namespace tarnel
