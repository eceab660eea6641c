#include "common/Limits.h"

#include <atomic>

namespace orbseq {

namespace {

std::atomic<std::int32_t> mostInChainNow = kMostInChain;

}  // namespace

std::int32_t mostInChain() noexcept { return mostInChainNow.load(std::memory_order_relaxed); }

void setMostInChain(std::int32_t sequences) noexcept {
  mostInChainNow.store(sequences, std::memory_order_relaxed);
}

}  // namespace orbseq
