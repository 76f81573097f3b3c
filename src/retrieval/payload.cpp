#include "retrieval/payload.h"

#include <string>

#include "base/printable.h"
#include "carrier/stored_text.h"
#include "crypto/cipher.h"
#include "crypto/compression.h"

namespace tarnel {

void MustLieInside(Position start, Length size, Length carrierSize, const Path& carrier) {
  const bool isInside =
      start.value >= 1 && size >= 0 && size <= carrierSize && start.value - 1 <= carrierSize - size;
  if (isInside) return;
  throw Error(ErrorNumber::BadRecordNumber,
              "cannot read " + Printable(carrier.native()) +
                  ": it is shorter than it was when its hideout was opened; open it again",
              carrier);
}

bool TakeOutPayload(ByteSource& payload, std::string_view compressed, Algorithm algorithm,
                    const Secret& password, ByteSink& plain) {
  std::string secondKey;
  if (compressed == "0") return CipherDecryptFile(algorithm, payload, plain, password, secondKey);
  DecompressingSink decompressing(plain);
  return CipherDecryptFile(algorithm, payload, decompressing, password, secondKey) &&
         decompressing.IsIntact();
}

Error DamagedPayload(std::string_view verb, std::string_view storedName) {
  return Error(ErrorNumber::DeviceIo, "cannot " + std::string(verb) + " " +
                                          Printable(ToPlatform(storedName)) +
                                          ": it is damaged or was altered");
}

}  // namespace tarnel
