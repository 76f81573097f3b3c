#include "tests/proof/carrier_session.h"

#include <stdexcept>

#include "carrier/open_hideout.h"
#include "carrier/stored_text.h"
#include "hiding/selection.h"
#include "retrieval/run_delete.h"
#include "retrieval/run_extract.h"
#include "retrieval/run_password.h"
#include "retrieval/run_update.h"
#include "retrieval/work_list.h"

namespace tarnel::test {

namespace {

template <class Screen>
class Agreeing : public Screen {
 public:
  explicit Agreeing(std::size_t cancelAt = 0) : m_cancelAt(cancelAt) {}

  Answer Ask(const Question& question) override {
    const bool isReading = question.id == "load.error" || question.id.starts_with("extract.");
    if (isReading) return Answer::Ignore;
    return question.buttons == Buttons::YesNo ? Answer::Yes : SafeAnswer(question.buttons);
  }
  void Yield() override { ++m_yields; }
  bool CancelRequested() const override { return m_cancelAt > 0 && m_yields >= m_cancelAt; }

 private:
  std::size_t m_cancelAt;
  std::size_t m_yields = 0;
};

template <class Screen>
class AgreeingReader : public Agreeing<Screen> {
 public:
  using Agreeing<Screen>::Agreeing;
  void ShowReading(Length, Length) override {}
  void HideoutLoaded(TreeNode&, std::size_t) override {}
  void HideoutGone() override {}
};

class Opener : public AgreeingReader<OpeningScreen> {
 public:
  void ShowTry(int) override {}
};

class Hider : public AgreeingReader<HideScreen> {
 public:
  using AgreeingReader::AgreeingReader;
  void ShowStage(HideStage) override {}
  void ShowFile(std::size_t, std::size_t, const Path&, Length) override {}
  void FileDone(std::size_t) override {}
  void ShowBackup(Length, Length) override {}
  void ShowOriginal(OriginalStep, const Path&, std::size_t, std::size_t) override {}
  void ShowProgress(double, double) override {}
};

class Rewriter : public AgreeingReader<RewriteScreen> {
 public:
  using AgreeingReader::AgreeingReader;
  void ShowProgress(Length, Length) override {}
  void HideoutEmptied() override {}
};

class Extractor : public Agreeing<ExtractScreen> {
 public:
  void ShowFile(std::size_t, std::size_t, std::string_view, Length, const Path&) override {}
  void ShowProgress(Length, Length) override {}
};

std::string PathOf(const MirrorRow& row) {
  std::string path;
  for (const std::string& part : FolderParts(row.Folder()))
    path += part + "/";
  return path + ToPlatform(row.Name());
}

std::string ContentAt(const Path& path) {
  return std::filesystem::exists(path) ? ReadAll(path) : "(damaged)";
}

Path PutSource(const Path& sources, const Entry& entry) {
  const Path path = sources / entry.path;
  std::filesystem::create_directories(path.parent_path());
  WriteAll(path, entry.content);
  return path;
}

}  // namespace

CarrierSession::CarrierSession(Path carrier, Files& files) : m_carrier(std::move(carrier)), m_files(files) {}

bool CarrierSession::Open(const std::string& password) {
  Opener screen;
  return TryPassword(m_carrier, Secret(password), m_reading, screen) == LoadResult::Loaded;
}

void CarrierSession::Create(const std::string& password, Algorithm algorithm) {
  CreateHideout(m_carrier, Secret(password), "Title", algorithm, AlgorithmName(algorithm), m_reading);
}

HideEnding CarrierSession::Hide(const Entries& entries, Compression compression, Originals originals,
                                const Path& sources) {
  HideRequest request{
      .rows = {}, .compress = compression == Compression::On, .originals = originals, .chosen = {}};
  for (const Entry& entry : entries) {
    const Path source = PutSource(sources, entry);
    const std::string folder = Path("/" + entry.path).parent_path().native();
    request.rows.push_back(
        {.source = source, .name = source.filename().native(), .folder = FolderText(folder, "/")});
    request.totalBytes += static_cast<double>(entry.content.size());
  }
  Hider screen(m_cancelAt);
  return RunHide(request, m_reading, screen).ending;
}

RewriteEnding CarrierSession::Delete(const std::vector<std::string>& paths) {
  DeleteRequest request;
  for (const std::string& path : paths)
    request.rows.push_back(RowOf(path));
  Rewriter screen(m_cancelAt);
  return RunDelete(request, m_reading, screen).ending;
}

RewriteEnding CarrierSession::Update(const Entry& entry, const Path& sources) {
  PreviewParcel parcel = ParcelOf(m_catalogue.Rows().at(RowOf(entry.path)));
  Rewriter screen(m_cancelAt);
  return RunUpdate({.previewFile = PutSource(sources, entry)}, parcel, m_reading, screen).ending;
}

RewriteEnding CarrierSession::ChangePassword(const std::string& from, const std::string& to) {
  Rewriter screen(m_cancelAt);
  return RunPassword({.oldPassword = Secret(from), .newPassword = Secret(to), .confirmation = Secret(to)},
                     m_reading, screen)
      .ending;
}

Entries CarrierSession::Extract(const Path& scratch) {
  ExtractRequest request;
  request.carrier = m_carrier;
  request.target = scratch;
  request.all = true;
  Extractor screen;
  RunExtract(request, m_catalogue, m_files, screen);
  Entries entries;
  for (auto row = m_catalogue.Rows().rbegin(); row != m_catalogue.Rows().rend(); ++row)
    entries.push_back({PathOf(*row), ContentAt(scratch / PathOf(*row))});
  return entries;
}

std::string CarrierSession::ExtractOne(const std::string& path, const Path& scratch) {
  ExtractRequest request;
  request.carrier = m_carrier;
  request.target = scratch;
  request.choices = {{.kind = ExtractChoice::Kind::File, .row = RowOf(path), .itemFolder = {}}};
  request.useFolderNames = false;
  Extractor screen;
  RunExtract(request, m_catalogue, m_files, screen);
  return ContentAt(scratch / Path(path).filename());
}

std::size_t CarrierSession::RowOf(const std::string& path) const {
  for (std::size_t row = 0; row < m_catalogue.Rows().size(); ++row)
    if (PathOf(m_catalogue.Rows().at(row)) == path) return row;
  throw std::runtime_error("not listed: " + path);
}

Entries ReadHideout(const Path& carrier, const std::string& password, Files& files) {
  CarrierSession session(carrier, files);
  if (!session.Open(password)) return {};
  const TempFolder scratch;
  return session.Extract(scratch / "out");
}

}  // namespace tarnel::test
