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
#include "cli/line_writer.h"
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

/// Columns of a table but for the last, the path: these go to the right.
using Columns = std::array<std::string, 3>;

Columns ColumnsOf(const Workbench& bench, std::size_t index) {
  const MirrorRow& row = bench.Rows()[index];
  return {"#" + std::to_string(NumberOfEntry(bench.Rows(), index)),
          std::to_string(WholeNumber(row.Field(tag::kPlainSize))),
          Printable(ToPlatform(row.Field(tag::kDate)))};
}

/// Makes each line twice, for no hideout is too large to be listed.
void WriteTable(const Workbench& bench, const Rows& chosen, Terminal& terminal) {
  std::array<std::size_t, std::tuple_size_v<Columns>> widths{};
  for (const std::size_t index : chosen) {
    const Columns columns = ColumnsOf(bench, index);
    for (std::size_t i = 0; i < widths.size(); ++i)
      widths[i] = std::max(widths[i], columns[i].size());
  }
  LineWriter lines(terminal);
  for (const std::size_t index : chosen) {
    const Columns columns = ColumnsOf(bench, index);
    std::string line;
    for (std::size_t i = 0; i < widths.size(); ++i)
      line += std::string(widths[i] - columns[i].size(), ' ') + columns[i] + "  ";
    lines.Write(line + ListedPath(PathOfEntry(bench.Rows()[index])) + "\n");
  }
}

std::string Totals(const Workbench& bench, const Rows& chosen) {
  double bytes = 0;
  for (const std::size_t row : chosen)
    bytes += static_cast<double>(WholeNumber(bench.Rows()[row].Field(tag::kPlainSize)));
  return std::to_string(chosen.size()) + (chosen.size() == 1 ? " file, " : " files, ") +
         HumanSize(std::llround(std::min(bytes, 1e18))) + ", " + Printable(bench.Title()) + ", " +
         bench.Algorithm() + "\n";
}

void WriteWholePaths(const Workbench& bench, const Rows& chosen, Terminal& terminal) {
  LineWriter lines(terminal);
  for (const std::size_t row : chosen)
    lines.Write(PathOfEntry(bench.Rows()[row]) + '\0');
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
  (options.onlyNames ? WriteWholePaths : WriteTable)(bench, chosen, around.terminal);
  if (!options.onlyNames && around.terminal.OutputIsTerminal()) around.terminal.Write(Totals(bench, chosen));
  return bench.CodeOfReading(ExitCode::Done);
}

}  // namespace tarnel
