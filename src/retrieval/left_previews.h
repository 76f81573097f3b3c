#pragma once

#include "base/dialogue.h"
#include "base/files.h"

namespace tarnel {

/// A view that is never left, because its program was killed, leaves its PreviewFolder in the system's
/// temporary folder. Such a folder is known by its name, by belonging to this user, and by not being locked;
/// no list of them is kept anywhere.

/// Asks whether the plain files in all such folders are to be destroyed, and on Yes overwrites and deletes
/// them and removes the folders. Empty folders are removed without a word. Nothing is asked where there are
/// none, or where the temporary folder can't be listed.
void OfferLeftPreviews(Dialogue& dialogue, Files& files);

/// The same for one folder that this program has made. An empty one stays.
void OfferLeftPreview(const Path& folder, Dialogue& dialogue, Files& files);

}  // namespace tarnel
