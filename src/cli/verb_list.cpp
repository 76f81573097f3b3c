#include <algorithm>
#include <cmath>

#include "base/formats.h"
#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"
#include "carrier/tags.h"
#include "cli/entry_paths.h"
#include "cli/json_output.h"
#include "cli/verbs.h"

namespace tarnel {

namespace {

/// A number of a record, which anybody may have written.
std::int64_t WholeNumber(std::string_view text) {
  constexpr double limit = 1e15;
  return std::llround(std::clamp(ReadNumber(text), -limit, limit));
}

Json JsonOfRow(const MirrorRow& row) {
  Json file;
  PutBytes(file, "name", ToPlatform(row.Name()));
  PutBytes(file, "folder", FolderOfEntry(row.Folder()));
  file["size"] = WholeNumber(row.Field(tag::kPlainSize));
  file["stored"] = row.size;
  file["attributes"] = WholeNumber(row.Field(tag::kAttributes));
  if (!row.Field(tag::kMode).empty()) PutBytes(file, "mode", row.Field(tag::kMode));
  PutBytes(file, "date", ToPlatform(row.Field(tag::kDate)));
  file["compressed"] = row.Field(tag::kCompressed) != "0";
  file["level"] = WholeNumber(row.Field(tag::kCompressed));
  file["start"] = row.start.value;
  return file;
}

std::string JsonText(const Workbench& bench) {
  Json object = JsonObject();
  PutBytes(object, "carrier", bench.GivenName());
  PutBytes(object, "title", bench.Title());
  object["algorithm"] = bench.Algorithm();
  object["files"] = Json::array();
  for (const MirrorRow& row : bench.Rows())
    object["files"].push_back(JsonOfRow(row));
  PutFaults(object, bench.Faults());
  return JsonLine(object);
}

struct Line {
  std::string size;
  std::string date;
  std::string path;
};

Line LineOf(const MirrorRow& row) {
  return {std::to_string(WholeNumber(row.Field(tag::kPlainSize))),
          Printable(ToPlatform(row.Field(tag::kDate))), Printable(PathOfEntry(row.Folder(), row.Name()))};
}

std::string Spaces(std::size_t width, const std::string& text) {
  return std::string(width - text.size(), ' ');
}

std::string Table(const std::vector<MirrorRow>& rows) {
  std::vector<Line> lines;
  lines.reserve(rows.size());
  std::size_t sizeWidth = 0;
  std::size_t dateWidth = 0;
  for (const MirrorRow& row : rows) {
    lines.push_back(LineOf(row));
    sizeWidth = std::max(sizeWidth, lines.back().size.size());
    dateWidth = std::max(dateWidth, lines.back().date.size());
  }
  std::string table;
  for (const Line& line : lines) {
    table += Spaces(sizeWidth, line.size) + line.size + "  " + line.date + Spaces(dateWidth, line.date) +
             "  " + line.path + "\n";
  }
  return table;
}

std::string Totals(const Workbench& bench) {
  double bytes = 0;
  for (const MirrorRow& row : bench.Rows())
    bytes += static_cast<double>(WholeNumber(row.Field(tag::kPlainSize)));
  const std::size_t count = bench.Rows().size();
  return std::to_string(count) + (count == 1 ? " file, " : " files, ") +
         HumanSize(std::llround(std::min(bytes, 1e18))) + ", " + Printable(bench.Title()) + ", " +
         bench.Algorithm() + "\n";
}

}  // namespace

ExitCode RunVerb(const ListOptions& options, Surroundings& around) {
  Workbench bench(options.carrier, around);
  bench.Open();
  bench.WarnOfFaults();
  if (around.options.json) {
    around.terminal.Write(JsonText(bench));
  } else {
    around.terminal.Write(Table(bench.Rows()));
    if (around.terminal.OutputIsTerminal()) around.terminal.Write(Totals(bench));
  }
  return bench.CodeOfReading(ExitCode::Done);
}

}  // namespace tarnel
