// A block of bytes, as the store's data values arrive in the agent.
#pragma once

#include <cstdint>
#include <vector>

#include "runtime/Object.h"

class MemoryBlock final : public Object {
  public:
    MemoryBlock() = default;
    explicit MemoryBlock(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}

    int64_t Size() const { return static_cast<int64_t>(bytes_.size()); }
    const std::vector<uint8_t>& Bytes() const { return bytes_; }

  private:
    std::vector<uint8_t> bytes_;
};
