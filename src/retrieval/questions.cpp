#include "retrieval/questions.h"

#include <string>
#include <utility>

#include "base/attempt.h"
#include "base/formats.h"
#include "base/printable.h"
#include "carrier/stored_text.h"

namespace tarnel::questions {
namespace {

constexpr const char* kTitle = "Tarnel";

Question Message(const char* id, std::string text) {
  return {.id = id,
          .title = kTitle,
          .text = std::move(text),
          .buttons = Buttons::Ok,
          .icon = Icon::Critical,
          .preset = Answer::Ok};
}

Question YesOrNo(const char* id, const char* title, std::string text, Answer preset) {
  return {.id = id,
          .title = title,
          .text = std::move(text),
          .buttons = Buttons::YesNo,
          .icon = Icon::Question,
          .preset = preset};
}

Question NotReplaced(const char* id, const char* advice, const Path& temporary, const Error& cause) {
  Question message = Message(id, "Error! Carrier file could not be created! " + std::string(advice) +
                                     Printable(temporary.native()) + " as a carrier file.");
  message.cause = cause;
  return message;
}

void AddNames(Question& report, const char* what, const std::vector<std::string>& stored) {
  for (const std::string& name : stored)
    report.list.push_back(what + Printable(ToPlatform(name)));
}

}  // namespace

Question ExtractError(const Error& error, ExtractFault fault) {
  const char* id = "extract.error";
  if (fault == ExtractFault::Damaged) id = question_id::kDamagedEntry;
  if (fault == ExtractFault::Name) id = question_id::kEntryName;
  return ErrorQuestion(error, id, kExtracting, LineBreak::LfCr, Answer::Abort);
}

Question PasswordLeavesBehind(const ChainFaults& faults, const Path& carrier) {
  std::string text = "cannot take all of " + Printable(carrier.native()) + " along to the new password";
  for (const std::string& sentence : SentencesOf(faults))
    text += "; " + sentence;
  return ErrorQuestion(Error(ErrorNumber::BadRecordNumber, text, carrier), "password.left-behind", kTitle,
                       LineBreak::LfCr, Answer::Abort);
}

Question Overwrite(const Path& target) {
  return {.id = "extract.overwrite",
          .title = " Extracting... Overwrite?",
          .text = "The file: " + Printable(target.native()) +
                  " is already existing!\r\n\r\nDo you want to overwrite?",
          .buttons = Buttons::YesNoOverwriteAll,
          .icon = Icon::Question,
          .preset = Answer::No};
}

Question NoSpaceToExtract(const Path& target, double required, std::int64_t free) {
  return YesOrNo("extract.no-space", kTitle,
                 "Not enough free space in: (" + Printable(target.native()) +
                     ") to extract the files. Required: " + PlainNumber(required) +
                     " bytes of free space, there are: " + std::to_string(free) +
                     ".\r\n\r\nDo you want to extract all the same?",
                 Answer::No);
}

Question TargetRefused(const Error& error) {
  return {.id = "extract.refused",
          .title = kTitle,
          .text = "Nothing can be extracted there: " + error.Description() + ".",
          .buttons = Buttons::Ok,
          .icon = Icon::Critical,
          .cause = error};
}

std::optional<Question> ExtractReport(const ExtractResult& result) {
  Question report{.id = "extract.report",
                  .title = kTitle,
                  .text = "Not everything was extracted:",
                  .buttons = Buttons::Ok,
                  .icon = result.damaged.empty() ? Icon::Information : Icon::Critical};
  AddNames(report, "damaged: ", result.damaged);
  AddNames(report, "left out: ", result.leftOut);
  for (const Path& kept : result.keptExisting)
    report.list.push_back("existing file kept: " + Printable(kept.native()));
  if (report.list.empty()) return std::nullopt;
  return report;
}

Question DeleteError(const Error& error) {
  return ErrorQuestion(error, "delete.error", kTitle, LineBreak::CrLf, Answer::Retry);
}

Question PasswordError(const Error& error) {
  return ErrorQuestion(error, "password.error", kTitle, LineBreak::LfCr, Answer::Retry);
}

Question PasswordDamaged(const Error& error) {
  return ErrorQuestion(error, "password.damaged", kTitle, LineBreak::LfCr, Answer::Retry);
}

Question UpdateError(const Error& error) {
  return ErrorQuestion(error, "update.error", kTitle, LineBreak::CrLf, Answer::Abort);
}

Question ViewError(const Error& error) {
  return ErrorQuestion(error, "view.error", kTitle, LineBreak::CrLf, Answer::Abort);
}

Question DeleteNotReplaced(const Path& temporary, const Error& cause) {
  return NotReplaced("delete.not-replaced", "Please use the temp file: ", temporary, cause);
}

Question PasswordNotReplaced(const Path& temporary, const Error& cause) {
  return NotReplaced("password.not-replaced", "Please use the temp file: ", temporary, cause);
}

Question UpdateNotReplaced(const Path& temporary, const Error& cause) {
  return NotReplaced("update.not-replaced", "Please use: ", temporary, cause);
}

Question PasswordRefused(PasswordFault fault) {
  switch (fault) {
    case PasswordFault::OldDiffers:
      return Message("password.old", "The old password is not valid!");
    case PasswordFault::NewIsEmpty:
      return Message("password.empty", "Please enter a new password!");
    case PasswordFault::ConfirmationDiffers:
      break;
  }
  return Message("password.confirmation", "The confirmation is not valid!");
}

Question PreviewMissing() {
  return Message("update.missing", "The file doesn't exist!");
}

Question ViewedEntryGone() {
  return Message("update.entry-gone",
                 "The hidden file is no longer in the carrier file: another program has removed or replaced "
                 "it. The extracted file is still there; save it elsewhere if you want to keep it.");
}

Question ConfirmUpdate(std::string_view oldSize, std::string_view newSize) {
  return YesOrNo(question_id::kUpdate, kTitle,
                 "The original file size is: " + std::string(oldSize) + " Bites\r\nThe new file size is: " +
                     std::string(newSize) + " Bites\r\n\r\nDo you really want to update?",
                 Answer::No);
}

Question ConfirmPreview(std::string_view storedName) {
  return YesOrNo("view.preview", kTitle, "Do you want to preview " + Printable(ToPlatform(storedName)) + "?",
                 Answer::Yes);
}

Question ReturnFromView(PreviewChange change) {
  std::string text = "Do you want to delete the temporally extracted file and return to Tarnel?";
  if (change == PreviewChange::Changed)
    text += "\r\n\r\nThe file has changed since the last update. What has changed will be lost.";
  return YesOrNo("view.return", kTitle, std::move(text),
                 change == PreviewChange::Changed ? Answer::No : Answer::Yes);
}

Question ReturnWithoutDeletion() {
  return YesOrNo("view.return-without", kTitle, "Do you want to return to Tarnel without deletion?",
                 Answer::No);
}

Question PreviewLocked() {
  Question question =
      Message("view.locked",
              "Temporary extracted file could not be destroyed! If this file is opened, please close it.");
  question.buttons = Buttons::RetryCancel;
  question.preset = Answer::Retry;
  return question;
}

Question PreviewStays() {
  return Message("view.attention",
                 "Pay attention! The temporally extracted file could not be destroyed. Please delete it "
                 "manually!");
}

Question PreviewsLeftBehind(const std::vector<Path>& plainFiles) {
  Question question = YesOrNo("view.left-behind", kTitle,
                              "Files that were viewed are still in the temporary folder, where they can be "
                              "read. What was changed in them since the last update is nowhere else.\r\n\r\n"
                              "Do you want to destroy them now?",
                              Answer::No);
  for (const Path& file : plainFiles)
    question.list.push_back(Printable(file.native()));
  return question;
}

Question ReallyCancel(const char* id, const char* title) {
  return YesOrNo(id, title, "Do you really want to cancel this procedure?", Answer::No);
}

}  // namespace tarnel::questions
