#include "cli/extract_to_output.h"

#include <functional>

#include "base/attempt.h"
#include "base/file_streams.h"
#include "carrier/payload.h"
#include "cli/entries.h"
#include "cli/screens.h"
#include "crypto/keys.h"

namespace tarnel {

namespace {

class OutputSink : public ByteSink {
 public:
  explicit OutputSink(Terminal& terminal) : m_terminal(terminal) {}
  void Write(Bytes bytes) override {
    m_terminal.Write(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    m_terminal.FinishOutput();
  }

 private:
  Terminal& m_terminal;
};

/// Looks behind each piece whether the person wants to stop.
class CancellableSource : public ByteSource {
 public:
  CancellableSource(ByteSource& inner, TerminalDialogue& talk, Length size)
      : m_inner(inner), m_talk(talk), m_size(size) {}
  std::size_t Read(MutableBytes into) override {
    m_talk.Yield();
    if (m_talk.CancelRequested()) throw CliFailure(ExitCode::Cancelled, "cancelled");
    const std::size_t got = m_inner.Read(into);
    m_talk.Progress().Show(m_passed += static_cast<Length>(got), m_size);
    return got;
  }

 private:
  ByteSource& m_inner;
  TerminalDialogue& m_talk;
  Length m_size;
  Length m_passed = 0;
};

}  // namespace

void ExtractToOutput(const MirrorRow& row, const Path& carrier, Surroundings& around) {
  const std::unique_ptr<File> file = around.files.OpenToRead(carrier);
  MustStillStand(*file, row.start, row.size, row.tail, carrier);
  const auto pass = [&](ByteSink& sink) {
    FileSource stretch(*file, carrier, row.start, row.size);
    CancellableSource payload(stretch, around.talk, row.size);
    const std::string fault = TakeOutPayload(payload, ClaimsOf({row.record.data(), row.record.size()}),
                                             row.hideout->algorithm, row.hideout->password, sink);
    around.talk.Progress().Clear();
    if (!fault.empty())
      throw CliFailure(ExitCode::Damaged, "cannot extract " + ListedPath(PathOfEntry(row)) + ": " + fault);
  };
  around.talk.Progress().SetLabel("Authenticating");
  NullSink nowhere;
  pass(nowhere);
  OutputSink output(around.terminal);
  pass(output);
}

}  // namespace tarnel
