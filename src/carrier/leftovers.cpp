#include "carrier/leftovers.h"

#include "base/printable.h"
#include "carrier/companions.h"
#include "carrier/questions.h"

namespace tarnel {

namespace {

std::vector<Path> IfThere(Path path, Files& files) {
  if (!files.Stat(path, Files::Links::DontFollow)) return {};
  return {std::move(path)};
}

}  // namespace

std::vector<Path> LeftoversOfHiding(const Path& carrier, Files& files) {
  return IfThere(BackupPath(carrier), files);
}

std::vector<Path> LeftoversOfRewriting(const Path& carrier, Files& files) {
  return IfThere(TemporaryCarrierPath(carrier), files);
}

std::string LeftoverAdvice(const Path& leftover) {
  return Printable(leftover.native()) +
         " lies beside the carrier: an interrupted run left it, or it is a file of your own. Recovering the "
         "carrier shows which copy opens with your password and keeps the others";
}

bool MayReplace(const std::vector<Path>& leftovers, Dialogue& dialogue) {
  return leftovers.empty() || dialogue.Ask(LeftoversQuestion(leftovers)) == Answer::Yes;
}

}  // namespace tarnel
