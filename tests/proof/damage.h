#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "carrier/walk.h"
#include "tests/proof/person.h"

namespace tarnel::test {

/// Damages a small carrier in many ways and compares what the program says and brings back. The carrier has
/// two hideouts of different algorithms and five entries, one of them compressed.
///
/// Always: no wrong byte comes out; extract and verify agree, and list with them as far as it reads; the
/// same sentence tells of a broken chain everywhere; what a verb refuses is as it was; mending loses nothing
/// that could be extracted before, and keeps the old carrier.
class DamageCampaign {
 public:
  DamageCampaign();

  /// Each `every`-th bit, one at a time: costs the entry that it hits at most.
  void FlipBits(std::size_t every, std::size_t first = 0);
  /// Each `every`-th bit of the length fields: mending brings everything back.
  void FlipLengthBits(std::size_t every);
  /// Cuts behind each `every`-th byte: salvage brings every entry that lies whole before the cut.
  void Cut(std::size_t every);
  /// Bytes behind the newest entry: verify says it, and mending brings everything back.
  void Append();
  /// Bytes taken out of an entry or put into one: mending costs that entry only.
  void CutOutAndInsert(std::size_t every);

  /// How many damaged carriers were looked at.
  std::size_t Carriers() const { return m_carriers; }
  /// What was found wrong, each with the damage that shows it.
  const std::vector<std::string>& Findings() const { return m_findings; }

 private:
  /// A place in the undamaged carrier; positions count from 0.
  struct Place {
    std::string name;
    std::string password;
    std::size_t start, record, trailer, end;
  };
  /// What a person sees of a hideout.
  struct Sight {
    Said list, extract, verify, salvage;
    std::map<std::string, std::string> extracted, salvaged;
  };
  enum class Part { Own, Payload, RecordFront, Record, Lengths };

  void Hide(const std::string& password, const std::vector<std::string>& options, const std::string& name,
            const std::string& content);
  void FindPlaces();
  const Place* PlaceAt(std::size_t at) const;
  static Part PartAt(const Place& place, std::size_t at);

  void CutOut(const Place& place, std::size_t at, std::size_t count);
  void PutIn(const Place& place, std::size_t at, std::size_t count);
  void MendUnderEach(const Place& hit, const std::string& what, const std::string& bytes);
  void Damage(const std::string& what, std::string bytes);
  Sight Look(const std::string& password);
  Sight LookAndJudge(const std::string& password);
  void JudgeHide(const std::string& password, const Sight& before);
  void JudgePasswd(const std::string& password, const Sight& before);
  void Mend(const std::string& password);
  void MendAgain(const std::string& password);
  void FlipBit(std::size_t at, unsigned bit);
  void JudgeFlip(const Place* hit, Part part, const std::string& password, const Sight& sight);
  void MustBeWhole(const std::string& password, const std::string& without = {});
  bool Has(const std::map<std::string, std::string>& files, const Place& place) const;
  void Must(bool holds, const std::string& what);

  class FastFiles : public PosixFiles {
   public:
    void SyncFileSystem(const Path&) override {}
    void SyncFolder(const Path&) override {}
  };
  FastFiles m_files;
  Person m_person{m_files};
  TempFolder m_folder;
  TempFolder m_sources;
  TempFolder m_out;
  Path m_carrier;
  std::map<std::string, std::string> m_contents;
  std::vector<Place> m_places;  ///< oldest first
  std::string m_whole;
  std::string m_damaged;  ///< the carrier being looked at
  std::string m_what;
  std::size_t m_carriers = 0;
  std::vector<std::string> m_findings;
};

}  // namespace tarnel::test
