#include <cmath>
#include <string>

#include "cli/verbs.h"
#include "crypto/phrase_words.h"

namespace tarnel {

ExitCode RunVerb(const PassphraseOptions& options, Surroundings& around) {
  const Secret phrase = RandomPhrase(options.words);
  const double bits = BitsOfRandomPhrase(options.words);
  around.report["passphrase"] = phrase.View();
  around.report["words"] = options.words;
  around.report["bits"] = std::floor(bits * 10) / 10;
  if (!around.options.json) around.terminal.Write(std::string(phrase.View()) + "\n");
  around.messages.Note(std::to_string(options.words) + (options.words == 1 ? " word" : " words") +
                       ", chosen at random: " + std::to_string(static_cast<int>(bits)) + " bits");
  return ExitCode::Done;
}

}  // namespace tarnel
