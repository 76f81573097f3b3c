#include "retrieval/work_list.h"

#include "base/printable.h"
#include "carrier/format.h"
#include "carrier/stored_text.h"

namespace tarnel {
namespace {

bool IsOneName(std::string_view part) {
  return !part.empty() && part != "." && part != ".." &&
         part.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

}  // namespace

std::vector<std::size_t> RowsInFolder(const Catalogue& catalogue, const Path& carrier,
                                      std::string_view itemFolder) {
  std::vector<std::size_t> found;
  const std::vector<MirrorRow>& rows = catalogue.Rows();
  for (std::size_t i = 0; i < rows.size(); ++i)
    if (rows[i].hideout->carrier == carrier && rows[i].Folder().starts_with(itemFolder)) found.push_back(i);
  return found;
}

std::vector<std::size_t> ExtractWorkList(const ExtractRequest& request, const Catalogue& catalogue) {
  if (request.all) return RowsInFolder(catalogue, request.carrier, "");
  std::vector<std::size_t> list;
  for (const ExtractChoice& choice : request.choices) {
    if (choice.kind == ExtractChoice::Kind::File) {
      list.push_back(choice.row);
      continue;
    }
    const std::vector<std::size_t> rows = RowsInFolder(catalogue, request.carrier, choice.itemFolder);
    list.insert(list.end(), rows.begin(), rows.end());
  }
  return list;
}

std::string RelativeFolder(const ExtractRequest& request, std::string_view folder) {
  const bool isRoot = request.nodeItemFolder == kRootFolder;
  if (!isRoot && folder.size() <= request.nodePath.size()) return {};
  std::string_view rest = isRoot ? folder : folder.substr(request.nodePath.size() + 1);
  if (rest.starts_with('\\')) rest.remove_prefix(1);  // joining to the target gives one separator only
  return std::string(rest);
}

std::vector<std::string> FolderParts(std::string_view folder) {
  std::vector<std::string> parts;
  if (folder.empty()) return parts;
  for (std::size_t begin = 0, end = 0; end != std::string_view::npos; begin = end + 1) {
    end = folder.find('\\', begin);
    parts.push_back(ToPlatform(folder.substr(begin, end == std::string_view::npos ? end : end - begin)));
    if (!IsOneName(parts.back()))
      throw Error(ErrorNumber::BadFileName, "cannot extract to the folder \"" +
                                                Printable(ToPlatform(folder)) +
                                                "\": it could lead out of the target folder");
  }
  return parts;
}

}  // namespace tarnel
