#include <algorithm>
#include <array>
#include <cmath>

#include "base/formats.h"
#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "cli/dates.h"
#include "cli/entries.h"
#include "cli/verbs.h"
#include "retrieval/restored_file.h"

namespace tarnel {

namespace {

using Rows = std::vector<std::size_t>;

/// A number of a record, which anybody may have written.
std::int64_t WholeNumber(std::string_view text) {
  constexpr double limit = 1e15;
  return std::llround(std::clamp(ReadNumber(text), -limit, limit));
}

Json JsonOfRow(const MirrorRow& row, std::size_t number) {
  Json file;
  file["number"] = number;
  PutBytes(file, "path", PathOfEntry(row));
  PutBytes(file, "name", ToPlatform(row.Name()));
  PutBytes(file, "folder", FolderOfEntry(row.Folder()));
  file["size"] = WholeNumber(row.Field(tag::kPlainSize));
  file["stored"] = row.size;
  file["attributes"] = WholeNumber(row.Field(tag::kAttributes));
  if (!row.Field(tag::kMode).empty()) PutBytes(file, "mode", row.Field(tag::kMode));
  const std::string date = ToPlatform(row.Field(tag::kDate));
  PutBytes(file, "date", date);
  if (const auto iso = IsoOfDateText(date)) file["date_iso"] = *iso;
  const RestoredAttributes attributes = RestoredAttributesOf({row.record.data(), row.record.size()});
  if (attributes.modified) file["modified"] = IsoOfMoment(*attributes.modified);
  file["compressed"] = row.Field(tag::kCompressed) != "0";
  file["level"] = WholeNumber(row.Field(tag::kCompressed));
  file["start"] = row.start.value;
  return file;
}

void FillReport(const Workbench& bench, const Rows& chosen, Json& report) {
  PutBytes(report, "title", bench.Title());
  report["algorithm"] = bench.Algorithm();
  report["files"] = Json::array();
  for (const std::size_t row : chosen)
    report["files"].push_back(JsonOfRow(bench.Rows()[row], NumberOfEntry(bench.Rows(), row)));
  PutFaults(report, bench.Faults());
}

/// Columns of a table: all but the last to the right.
std::string Table(const Workbench& bench, const Rows& chosen) {
  constexpr std::size_t kColumns = 4;
  std::vector<std::array<std::string, kColumns>> lines;
  std::array<std::size_t, kColumns> widths{};
  lines.reserve(chosen.size());
  for (const std::size_t index : chosen) {
    const MirrorRow& row = bench.Rows()[index];
    lines.push_back({"#" + std::to_string(NumberOfEntry(bench.Rows(), index)),
                     std::to_string(WholeNumber(row.Field(tag::kPlainSize))),
                     Printable(ToPlatform(row.Field(tag::kDate))), ListedPath(PathOfEntry(row))});
    for (std::size_t i = 0; i + 1 < kColumns; ++i)
      widths[i] = std::max(widths[i], lines.back()[i].size());
  }
  std::string table;
  for (const auto& line : lines) {
    for (std::size_t i = 0; i + 1 < kColumns; ++i)
      table += std::string(widths[i] - line[i].size(), ' ') + line[i] + "  ";
    table += line.back() + "\n";
  }
  return table;
}

std::string Totals(const Workbench& bench, const Rows& chosen) {
  double bytes = 0;
  for (const std::size_t row : chosen)
    bytes += static_cast<double>(WholeNumber(bench.Rows()[row].Field(tag::kPlainSize)));
  return std::to_string(chosen.size()) + (chosen.size() == 1 ? " file, " : " files, ") +
         HumanSize(std::llround(std::min(bytes, 1e18))) + ", " + Printable(bench.Title()) + ", " +
         bench.Algorithm() + "\n";
}

std::string WholePaths(const Workbench& bench, const Rows& chosen) {
  std::string paths;
  for (const std::size_t row : chosen)
    paths += PathOfEntry(bench.Rows()[row]) + '\0';
  return paths;
}

}  // namespace

ExitCode RunVerb(const ListOptions& options, Surroundings& around) {
  Workbench bench(options.carrier, around);
  bench.Open();
  bench.WarnOfFaults();
  const Rows chosen = MatchEntries(bench.Rows(), {.named = options.entries, .excluded = {}});
  if (around.options.json) {
    FillReport(bench, chosen, around.report);
    return bench.CodeOfReading(ExitCode::Done);
  }
  around.terminal.Write(options.onlyNames ? WholePaths(bench, chosen) : Table(bench, chosen));
  if (!options.onlyNames && around.terminal.OutputIsTerminal()) around.terminal.Write(Totals(bench, chosen));
  return bench.CodeOfReading(ExitCode::Done);
}

}  // namespace tarnel
