// A generated tree shaped like a real Trash, for the size benchmark: loose files,
// folder trees of uneven depth, and application bundles with their links. The
// same file count always gives the same tree. Files are sparse: their lengths are
// real, their blocks are not written.
#pragma once

#include <cstdint>
#include <string>

struct TrashTreeFacts {
    int64_t files = 0;    // entries that are no folder, links included
    int64_t folders = 0;  // the root included
    int maxDepth = 0;
};

// Makes the tree at path (which must not exist) with the given number of files.
// Throws std::runtime_error when a file or folder cannot be made.
TrashTreeFacts MakeTrashTree(const std::string& path, int64_t files);
