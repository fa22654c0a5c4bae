// Immutable bytes that are passed by reference, so that artwork reaches the card from the wire
// without a copy.
#pragma once

#include <memory>

#include "platform/Bytes.hpp"

namespace quorvane {

// Compares by contents; comparing an object with itself takes constant time.
class SharedBytes {
public:
    explicit SharedBytes(Bytes bytes) : bytes_(std::make_shared<const Bytes>(std::move(bytes))) {}

    ByteView view() const { return *bytes_; }
    std::size_t size() const { return bytes_->size(); }
    bool isSameObject(const SharedBytes& other) const { return bytes_ == other.bytes_; }
    bool operator==(const SharedBytes& other) const {
        // As text, because that compares whole blocks of memory.
        return bytes_ == other.bytes_ || textOf(*bytes_) == textOf(*other.bytes_);
    }

private:
    std::shared_ptr<const Bytes> bytes_;
};

}  // namespace quorvane
