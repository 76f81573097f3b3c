#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "carrier/catalogue.h"
#include "retrieval/run_extract.h"

namespace tarnel {

/// The rules of which entries are taken and where each goes. Folders are stored text, parts joined by "\".

/// The carrier's rows whose folder begins with `itemFolder`, in row order. The comparison is one of
/// characters: with "Pics" the rows of "Pics2" come too.
std::vector<std::size_t> RowsInFolder(const Catalogue& catalogue, const Path& carrier,
                                      std::string_view itemFolder);

/// Row indices in the order of extraction. A file chosen by itself and through its folder stands twice.
std::vector<std::size_t> ExtractWorkList(const ExtractRequest& request, const Catalogue& catalogue);

/// The part of an entry's folder that lies below the node selected in the tree, or what is left of it when as
/// many characters as the node's path has, and one more, are cut from its front. One
/// separator that then stands in front is dropped: folder texts of a base without a closing one begin so.
std::string RelativeFolder(const ExtractRequest& request, std::string_view folder);

/// The platform's names of the folder's parts, none for an empty folder. Throws Error BadFileName that names
/// the folder if a part is empty, "." or "..", or holds "/" or a zero byte.
std::vector<std::string> FolderParts(std::string_view folder);

}  // namespace tarnel
