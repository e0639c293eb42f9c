#include "las/companion/QvrStore.h"

#include <cstring>

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

QvrStore::QvrStore(std::size_t blockBytes, const std::wstring& target) : blockBytes_(blockBytes) {
    if (!target.empty()) {
        temporary_.emplace(target);
        Require(temporary_->CreationError());
        Require(file_.Open(temporary_->Path(), false));
    }
}

QvrStore::Block QvrStore::Put(std::span<const std::byte> bytes) {
    if (!temporary_) {
        return PutIntoMemory(bytes);
    }
    const Block block = NewBlock();
    Require(file_.WriteAt(block * std::uint64_t{blockBytes_}, bytes));
    return block;
}

QvrStore::Block QvrStore::PutIntoMemory(std::span<const std::byte> bytes) {
    // Not initialized, since every byte is written.
    Memory memory(new std::byte[bytes.size()]);
    std::memcpy(memory.get(), bytes.data(), bytes.size());
    const Block block = NewBlock();
    const std::lock_guard guard(lock_);
    if (memory_.size() <= block) {
        memory_.resize(block + std::size_t{1});
    }
    memory_[block] = std::move(memory);
    return block;
}

QvrStore::Block QvrStore::NewBlock() {
    const std::lock_guard guard(lock_);
    if (free_.empty()) {
        return count_++;
    }
    const Block block = free_.back();
    free_.pop_back();
    return block;
}

void QvrStore::Get(Block block, std::span<std::byte> bytes) const {
    if (!temporary_) {
        const std::byte* memory = nullptr;
        {
            const std::lock_guard guard(lock_);
            memory = memory_[block].get();
        }
        std::memcpy(bytes.data(), memory, bytes.size());
        return;
    }
    std::size_t read = 0;
    Require(file_.ReadAt(block * std::uint64_t{blockBytes_}, bytes, read));
    if (read < bytes.size()) {
        throw LDataError(
            FormatText(Text(text::kLazCannotRead), {temporary_->Path(), Text(text::kUnknownError)}));
    }
}

void QvrStore::Free(Block block) {
    const std::lock_guard guard(lock_);
    if (!temporary_) {
        memory_[block].reset();
    }
    free_.push_back(block);
}

void QvrStore::Require(SystemError error) const {
    if (error != 0) {
        throw LDataError(
            FormatText(Text(text::kLazCannotWrite), {temporary_->Path(), SystemErrorText(error)}));
    }
}

}  // namespace orvex
