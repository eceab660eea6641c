#include "sequence/SeqExceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

// Defined here, not inline, so that each type has one virtual table and one type information.
SeqExceptions::DictionaryFailure::~DictionaryFailure() = default;
SeqExceptions::IOException::~IOException() = default;

const char* SeqExceptions::DictionaryFailure::what() const noexcept {
  return "sequence dictionary: out of memory";
}

}  // namespace SEQUENCE_NAMESPACE_800
