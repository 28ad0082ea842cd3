// BinaryStream: a new file that text is written into, byte for byte. The agent
// writes its crash log through it. Every failure raises IOException with the
// platform's error code; closing is left to the stream's user, and a stream that
// is dropped unclosed closes its file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "runtime/Object.h"

namespace platform {
class OutputFile;
}

class FolderItem;

class BinaryStream final : public Object {
  public:
    // A new empty file at the item's path and a stream on it; a file that is there
    // is emptied when overwrite allows it. NilObjectException for a nil file;
    // IOException 104 when the file exists and overwrite is false (the file is left
    // alone); IOException with errno (and the file's LastErrorCode set to it) when
    // the file cannot be created.
    static std::shared_ptr<BinaryStream> Create(const std::shared_ptr<FolderItem>& file,
                                                bool overwrite);

    // A stream on a file already open for writing; Create is the way to get one.
    explicit BinaryStream(std::unique_ptr<platform::OutputFile> file);
    ~BinaryStream() override;
    BinaryStream(const BinaryStream&) = delete;
    BinaryStream& operator=(const BinaryStream&) = delete;

    // Appends the bytes of the text, with no line end of its own. IOException with
    // errno as ErrorNumber and no Message on failure, a closed stream included.
    void Write(const std::string& text);
    // Closes the file, so that what was written is in it. Never raises: a failure
    // shows in LastErrorCode.
    void Close();
    // 0, or the error code of the last operation.
    int64_t LastErrorCode() const { return lastErrorCode_; }

  private:
    std::unique_ptr<platform::OutputFile> file_;
    int64_t lastErrorCode_ = 0;
};
