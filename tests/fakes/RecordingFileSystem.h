// A file system that passes every call to the one installed before it (the real
// disk, normally), counts the calls, and can disturb a listing: run something just
// before an entry is handed out (to make it vanish), or refuse to enter a folder.
// Installed for the life of the object.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "platform/FileSystem.h"

class RecordingFileSystem final : public platform::FileSystem {
  public:
    struct Counts {
        int status = 0;
        int openFolder = 0;
        int next = 0;
        int statEntry = 0;
        int statFolderEntry = 0;  // a look at an entry the listing already called a folder
        int enter = 0;
        int leave = 0;
    };

    RecordingFileSystem() : real_(platform::CurrentFileSystem()) {
        platform::InstallFileSystem(this);
    }
    ~RecordingFileSystem() override { platform::InstallFileSystem(nullptr); }
    RecordingFileSystem(const RecordingFileSystem&) = delete;
    RecordingFileSystem& operator=(const RecordingFileSystem&) = delete;

    // Runs with the entry's name just before a cursor hands the entry out.
    std::function<void(std::string_view name)> beforeEntry;
    // Enter on an entry of this name fails with the code given.
    std::map<std::string, int, std::less<>> enterFailures;
    Counts counts;

    platform::FileStatus Status(const std::string& path) override {
        ++counts.status;
        return real_.Status(path);
    }
    std::unique_ptr<platform::FolderCursor> OpenFolder(const std::string& path,
                                                       int& error) override {
        ++counts.openFolder;
        auto cursor = real_.OpenFolder(path, error);
        if (cursor == nullptr)
            return nullptr;
        return std::make_unique<Cursor>(*this, std::move(cursor));
    }
    std::string ResolveLink(const std::string& path) override { return real_.ResolveLink(path); }
    std::unique_ptr<platform::OutputFile> CreateFile(const std::string& path, int& error) override {
        return real_.CreateFile(path, error);
    }
    std::string DisplayName(const std::string& path) override { return real_.DisplayName(path); }
    std::string TrashFolder(const std::string& volumeRoot) override {
        return real_.TrashFolder(volumeRoot);
    }
    std::string DesktopFolder() override { return real_.DesktopFolder(); }
    std::string CurrentFolder() override { return real_.CurrentFolder(); }
    std::string ErrorText(int error) override { return real_.ErrorText(error); }

  private:
    class Cursor final : public platform::FolderCursor {
      public:
        Cursor(RecordingFileSystem& owner, std::unique_ptr<platform::FolderCursor> real)
            : owner_(owner), real_(std::move(real)) {}

        bool Next(platform::FolderEntry& entry) override {
            ++owner_.counts.next;
            if (!real_->Next(entry))
                return false;
            name_ = entry.name;
            kind_ = entry.kind;
            if (owner_.beforeEntry)
                owner_.beforeEntry(name_);
            return true;
        }
        int Error() const override { return real_->Error(); }
        platform::FileStatus StatEntry() override {
            ++owner_.counts.statEntry;
            if (kind_ == platform::EntryKind::kFolder)
                ++owner_.counts.statFolderEntry;
            return real_->StatEntry();
        }
        int Enter() override {
            ++owner_.counts.enter;
            if (const auto failure = owner_.enterFailures.find(name_);
                failure != owner_.enterFailures.end()) {
                return failure->second;
            }
            return real_->Enter();
        }
        int Leave() override {
            ++owner_.counts.leave;
            return real_->Leave();
        }

      private:
        RecordingFileSystem& owner_;
        std::unique_ptr<platform::FolderCursor> real_;
        std::string name_;
        platform::EntryKind kind_ = platform::EntryKind::kUnknown;
    };

    platform::FileSystem& real_;
};
