// How many bytes a file or a folder tree holds. The Trash watcher measures the
// whole Trash with SizeZRV at every start, so the walk is one pass over the tree
// that never follows a link, goes to any depth in constant stack and a bounded
// number of open descriptors, and keeps no memory of what it has seen.
//
// Sizes are bytes held in a Double (exact up to 2^53); counts are 64-bit. Lengths
// are logical: the bytes a file holds, not the blocks it takes on disk.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "runtime/Dictionary.h"
#include "runtime/FolderItem.h"

namespace FolderItemExtension {

// The keys of SizeAsDictionaryZRV's dictionary, in the order they are entered.
inline constexpr std::string_view kDataSizeKey = "data_size";
inline constexpr std::string_view kResourceSizeKey = "resource_size";
inline constexpr std::string_view kFileCountKey = "file_count";
inline constexpr std::string_view kFolderCountKey = "folder_count";

// Adds to the counters what the folder's tree holds: the data and resource
// lengths of every entry that is no folder (links, as themselves, included), the
// number of such entries, and the number of folders, this one included. A folder
// is summed from zero by itself and joins its parent as one addend. It only adds:
// the caller zeroes the counters. NilObjectException for a nil folder;
// IOException (errno, the system's text) when a folder of the tree cannot be
// listed, after which the counters hold a partial sum that means nothing.
void CalcFolderItem(const std::shared_ptr<FolderItem>& folder, double& dataSize,
                    double& resourceSize, int64_t& fileCount, int64_t& folderCount);

// The folder's totals as "data_size" and "resource_size" (Double), "file_count"
// and "folder_count" (Int64). Raises as CalcFolderItem does; no partial result.
std::shared_ptr<Dictionary> SizeAsDictionaryZRV(const std::shared_ptr<FolderItem>& item);

// Bytes in the item: 0.0 for nil or a missing item; for a folder its "data_size";
// for anything else its PhysicalFileTotalLengthMBS. Raises as CalcFolderItem does
// for a folder that cannot be measured.
double SizeZRV(const std::shared_ptr<FolderItem>& item);

// Bytes of the item's resource fork: always 0 on Linux, whose files have none; 0
// when the item cannot be looked at. NilObjectException for nil.
int64_t PhysicalFileResLengthMBS(const std::shared_ptr<FolderItem>& item);
// Bytes of the item over all its forks: on Linux its Length; 0 when the item
// cannot be looked at. NilObjectException for nil.
int64_t PhysicalFileTotalLengthMBS(const std::shared_ptr<FolderItem>& item);

}  // namespace FolderItemExtension
