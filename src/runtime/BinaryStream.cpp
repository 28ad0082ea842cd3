#include "runtime/BinaryStream.h"

#include <utility>

#include "platform/FileSystem.h"
#include "runtime/FolderItem.h"
#include "runtime/RuntimeException.h"

namespace {

// The code that Create raises for an existing file it may not overwrite.
constexpr int64_t kFileExistsError = 104;
constexpr const char* kNoFileMessage = "No file was given to create.";
constexpr const char* kFileExistsMessage = "The file already exists.";

}  // namespace

std::shared_ptr<BinaryStream> BinaryStream::Create(const std::shared_ptr<FolderItem>& file,
                                                   bool overwrite) {
    if (file == nullptr)
        throw NilObjectException(kNoFileMessage);
    if (!overwrite && file->Exists())
        throw IOException(kFileExistsMessage, kFileExistsError);
    platform::FileSystem& fileSystem = platform::CurrentFileSystem();
    int error = 0;
    auto output = fileSystem.CreateFile(file->NativePath(), error);
    file->lastErrorCode_ = error;
    if (output == nullptr)
        throw IOException(fileSystem.ErrorText(error), error);
    return std::make_shared<BinaryStream>(std::move(output));
}

BinaryStream::BinaryStream(std::unique_ptr<platform::OutputFile> file) : file_(std::move(file)) {}

BinaryStream::~BinaryStream() = default;

void BinaryStream::Write(const std::string& text) {
    lastErrorCode_ = file_->Write(text);
    if (lastErrorCode_ != 0)
        throw IOException({}, lastErrorCode_);
}

void BinaryStream::Close() {
    lastErrorCode_ = file_->Close();
}
