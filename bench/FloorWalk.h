/* The floor of the size benchmark: the least a program must do to sum a tree's
   file lengths on Linux. One getdents64 pass per folder, the entry's type from the
   listing, one fstatat per entry that is no folder, a descriptor held per level. */
#ifndef LARKFEN_BENCH_FLOOR_WALK_H
#define LARKFEN_BENCH_FLOOR_WALK_H

#ifdef __cplusplus
extern "C" {
#endif

struct FloorTotals {
    unsigned long long bytes;
    long long files;
    long long folders;
};

/* Adds the tree at path to totals, the root folder counted; links are not
   followed. Returns 0, or the errno of the first failure. */
int FloorWalk(const char* path, struct FloorTotals* totals);

#ifdef __cplusplus
}
#endif

#endif
