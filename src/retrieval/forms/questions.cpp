#include "retrieval/forms/questions.h"

namespace tarnel {

Question LocateCarrierMessage() {
  return {.id = "carrier-file.none",
          .title = "Tarnel",
          .text = "Please locate the carrier file!",
          .icon = Icon::Critical};
}

}  // namespace tarnel
