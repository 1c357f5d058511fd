#pragma once

#include "component/storage/Container.h"
#include "component/storage/files/FileSystem.h"

/// A private file for tiles that are not saved yet. They stand in it in the form in which they will be
/// stored, so that saving copies them as they are. It goes away with the last map that needs it; one that a
/// killed program left is swept by the next start. An empty folder name means the user's cache folder. Where
/// no file can be made in the folder it is the cache folder, too, and where none can be made there the
/// system's for temporary files that outlast a start. Throws what stood in the way at the first of them.
std::shared_ptr<Container> MakeScratch(const std::shared_ptr<FileSystem>& files, const std::string& folder,
                                       std::shared_ptr<const Envelope> envelope);

/// The user's cache folder for this program; made when it is missing.
std::filesystem::path UserCacheFolder();
