// The exceptions of the sequence rooms.
//
// DictionaryFailure is thrown by value when memory runs out inside a dictionary operation.
// IOException is thrown BY POINTER (`throw new IOException`) by the readers and writers of stored
// lattices; who catches it deletes it. describeCurrentException() in sequence/errorText.h turns
// either into a line of text.

#ifndef SEQUENCE_SEQEXCEPTIONS_H_
#define SEQUENCE_SEQEXCEPTIONS_H_

#include <exception>
#include <new>
#include <string>

#include "common/OrbExport.h"

namespace SEQUENCE_NAMESPACE_800 {

class ORBSEQ_EXPORT SeqExceptions {
 public:
  // Memory ran out, and so it is caught where that is.
  class ORBSEQ_EXPORT DictionaryFailure : public std::bad_alloc {
   public:
    explicit DictionaryFailure(char code = 0) noexcept : code_(code) {}
    ~DictionaryFailure() override;

    char code() const noexcept { return code_; }  // 0: memory ran out
    const char* what() const noexcept override;

   private:
    char code_;
  };

  class ORBSEQ_EXPORT IOException : public std::exception {
   public:
    explicit IOException(std::string message) : message_(std::move(message)) {}
    ~IOException() override;

    const char* what() const noexcept override { return message_.c_str(); }

   private:
    std::string message_;
  };
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQUENCE_SEQEXCEPTIONS_H_
