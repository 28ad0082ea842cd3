// The size benchmark. SizeZRV measures the Trash at every start of the agent, so
// it is timed on a generated Trash-like tree against the tools a user would reach
// for (du, gdu) and against the floor: a bare C loop of getdents64 and fstatat.
// Every contender runs warm, in a fresh process of its own, several times; the
// medians and their ratios are printed. Then the peak resident memory of one
// measurement, in a fresh process, on a small and a large tree.
//
//   bench_size                 the whole comparison
//   bench_size measure PATH    prints SizeZRV of PATH (what the comparison times)
//   bench_size floor PATH      prints the floor loop's byte count of PATH
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "FloorWalk.h"
#include "TrashTree.h"
#include "files/FolderItemSize.h"
#include "runtime/FolderItem.h"
#include "runtime/RuntimeException.h"
#include "runtime/Variant.h"

extern char** environ;

namespace {

constexpr int kRuns = 9;
constexpr int kMemoryRuns = 3;
constexpr int64_t kLargeTree = 300000;
constexpr int64_t kSmallTree = 10000;
constexpr const char* kDataFolder = LARKFEN_BENCH_DATA;
// Bump when the generator changes, so that old trees are made again.
constexpr const char* kTreeVersion = "v1";

struct Run {
    double seconds = 0;
    long peakKiB = 0;
    bool ok = false;
};

// Runs the command with its output thrown away; its wall time and peak memory.
Run RunQuietly(const std::vector<std::string>& command) {
    std::vector<char*> argv;
    argv.reserve(command.size() + 1);
    for (const std::string& argument : command)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    Run run;
    pid_t child = 0;
    const auto start = std::chrono::steady_clock::now();
    if (posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ) == 0) {
        int status = 0;
        rusage usage{};
        wait4(child, &status, 0, &usage);
        run.seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        run.peakKiB = usage.ru_maxrss;
        run.ok = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
    posix_spawn_file_actions_destroy(&actions);
    return run;
}

template <class T>
T Median(std::vector<T> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// The tree of that many files under bench/data, made the first time and reused.
std::string TrashTree(int64_t files) {
    const std::filesystem::path data(kDataFolder);
    const std::filesystem::path tree = data / ("trash-" + std::to_string(files));
    const std::filesystem::path ready =
        data / ("trash-" + std::to_string(files) + "." + kTreeVersion + ".ready");
    if (!std::filesystem::exists(ready)) {
        std::printf("Making %s (once; later runs reuse it) ...\n", tree.c_str());
        std::fflush(stdout);
        std::filesystem::remove_all(tree);
        std::filesystem::create_directories(data);
        const TrashTreeFacts facts = MakeTrashTree(tree, files);
        std::ofstream(ready) << facts.files << " files, " << facts.folders << " folders, depth "
                             << facts.maxDepth << "\n";
    }
    std::ifstream facts(ready);
    std::string line;
    std::getline(facts, line);
    std::printf("Tree %s: %s\n", tree.c_str(), line.c_str());
    return tree;
}

// The measurement and the floor must agree before their times mean anything.
bool SameTotals(const std::string& tree) {
    const auto sizes = FolderItemExtension::SizeAsDictionaryZRV(std::make_shared<FolderItem>(tree));
    FloorTotals floor{};
    if (const int error = FloorWalk(tree.c_str(), &floor); error != 0) {
        std::printf("The floor loop failed: %s\n", std::strerror(error));
        return false;
    }
    const double dataSize = VariantToDouble(sizes->Value(StringToVariant("data_size")));
    const int64_t files = VariantToInt64(sizes->Value(StringToVariant("file_count")));
    const int64_t folders = VariantToInt64(sizes->Value(StringToVariant("folder_count")));
    std::printf("SizeAsDictionaryZRV: %.0f bytes, %" PRId64 " files, %" PRId64 " folders\n",
                dataSize, files, folders);
    std::printf("Floor loop:          %llu bytes, %lld files, %lld folders\n", floor.bytes,
                floor.files, floor.folders);
    return dataSize == static_cast<double>(floor.bytes) && files == floor.files &&
           folders == floor.folders;
}

struct Contender {
    const char* label;
    std::vector<std::string> command;
    std::vector<double> seconds;
    bool available = true;
};

int Compare(const std::string& self) {
    const std::string small = TrashTree(kSmallTree);
    const std::string large = TrashTree(kLargeTree);
    if (!SameTotals(large)) {
        std::printf("SizeZRV and the floor loop disagree: no figures.\n");
        return 1;
    }
    std::vector<Contender> contenders = {
        {"SizeZRV", {self, "measure", large}, {}},
        {"floor (getdents64 + fstatat)", {self, "floor", large}, {}},
        {"du -s --apparent-size -B1", {"du", "-s", "--apparent-size", "-B1", large}, {}},
        {"gdu -n -s", {"gdu", "-n", "-s", large}, {}},
    };
    for (Contender& contender : contenders) {
        // The warm-up run: caches filled, and the tool known to be there.
        contender.available = RunQuietly(contender.command).ok;
        if (!contender.available)
            std::printf("%s did not run; left out.\n", contender.label);
    }
    // Rounds, each contender once a round in turn, so that a slow spell of the
    // machine falls on all of them alike.
    for (int round = 0; round < kRuns; ++round) {
        for (Contender& contender : contenders) {
            if (!contender.available)
                continue;
            const Run run = RunQuietly(contender.command);
            if (run.ok)
                contender.seconds.push_back(run.seconds);
        }
    }
    std::printf("\nWall time on %s, warm, median of %d runs, each in a fresh process:\n",
                large.c_str(), kRuns);
    const double measured = Median(contenders[0].seconds);
    for (const Contender& contender : contenders) {
        if (contender.seconds.empty())
            continue;
        const double median = Median(contender.seconds);
        std::printf("  %-30s %9.1f ms   SizeZRV / this = %.3f\n", contender.label, median * 1000,
                    measured / median);
    }
    std::printf("  targets: SizeZRV / floor <= 1.15; SizeZRV / du < 1; SizeZRV / gdu < 1\n");

    std::printf(
        "\nPeak resident memory of one SizeZRV measurement, fresh process, median of "
        "%d:\n",
        kMemoryRuns);
    long peaks[2] = {0, 0};
    const std::string* trees[2] = {&small, &large};
    const int64_t sizes[2] = {kSmallTree, kLargeTree};
    for (int i = 0; i < 2; ++i) {
        std::vector<long> runs;
        runs.reserve(kMemoryRuns);
        for (int run = 0; run < kMemoryRuns; ++run) {
            runs.push_back(RunQuietly({self, "measure", *trees[i]}).peakKiB);
        }
        peaks[i] = Median(runs);
        std::printf("  %7" PRId64 " files: %ld KiB\n", sizes[i], peaks[i]);
    }
    std::printf("  difference: %ld KiB (target: within 1024 KiB)\n", peaks[1] - peaks[0]);
    return 0;
}

int PrintSize(const std::string& path) {
    try {
        std::printf("%.0f\n", FolderItemExtension::SizeZRV(std::make_shared<FolderItem>(path)));
        return 0;
    } catch (const RuntimeException& failure) {
        std::fprintf(stderr, "%s (%" PRId64 ")\n", failure.Message().c_str(),
                     failure.ErrorNumber());
        return 1;
    }
}

int PrintFloor(const std::string& path) {
    FloorTotals totals{};
    if (const int error = FloorWalk(path.c_str(), &totals); error != 0) {
        std::fprintf(stderr, "%s\n", std::strerror(error));
        return 1;
    }
    std::printf("%llu\n", totals.bytes);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    if (arguments.empty()) {
        try {
            return Compare(std::filesystem::read_symlink("/proc/self/exe"));
        } catch (const std::exception& failure) {
            std::fprintf(stderr, "%s\n", failure.what());
            return 1;
        }
    }
    if (arguments.size() == 2 && arguments[0] == "measure")
        return PrintSize(arguments[1]);
    if (arguments.size() == 2 && arguments[0] == "floor")
        return PrintFloor(arguments[1]);
    std::fprintf(stderr, "usage: bench_size [measure PATH | floor PATH]\n");
    return 2;
}
