#pragma once

#include <string>
#include <utility>
#include <vector>

#include "carrier/load_hideout.h"
#include "hiding/run_hide.h"
#include "retrieval/carrier_rewrite.h"
#include "tests/support/temp_folder.h"

namespace tarnel::test {

/// A hidden file: its path in the hideout, parts joined by "/", and what is in it.
struct Entry {
  std::string path;
  std::string content;
  friend bool operator==(const Entry&, const Entry&) = default;
};
using Entries = std::vector<Entry>;  ///< oldest first

/// One run of the program on one carrier: opens, changes and reads hideouts. The person agrees to everything,
/// reads on past what can't be read, and aborts at all other errors.
class CarrierSession {
 public:
  CarrierSession(Path carrier, Files& files);
  CarrierSession(const CarrierSession&) = delete;
  CarrierSession& operator=(const CarrierSession&) = delete;

  bool Open(const std::string& password);
  void Create(const std::string& password, Algorithm algorithm);

  /// The operation that follows is cancelled at its n-th yield; 0 is never.
  void CancelAtYield(std::size_t n) { m_cancelAt = n; }

  enum class Compression { Off, On };
  /// Hides in the current hideout. The originals lie below `sources` and are made first.
  HideEnding Hide(const Entries& entries, Compression compression, Originals originals, const Path& sources);
  RewriteEnding Delete(const std::vector<std::string>& paths);
  RewriteEnding Update(const Entry& entry, const Path& sources);
  RewriteEnding ChangePassword(const std::string& from, const std::string& to);

  /// What the current hideout lists, each with what its extraction into `scratch` gives: "(damaged)" where
  /// that is no file.
  Entries Extract(const Path& scratch);
  /// The same of one entry.
  std::string ExtractOne(const std::string& path, const Path& scratch);

 private:
  std::size_t RowOf(const std::string& path) const;

  Path m_carrier;
  Files& m_files;
  Catalogue m_catalogue;
  ReadingGuards m_guards;
  CurrentHideout m_current;
  Reading m_reading{m_files, m_catalogue, m_guards, m_current};
  std::size_t m_cancelAt = 0;
};

/// Opens with a fresh session and extracts; no entries if the password opens nothing.
Entries ReadHideout(const Path& carrier, const std::string& password, Files& files);

}  // namespace tarnel::test
