// Converts DOM text into narrow text of one encoding.
//
// Threads: one thread at a time, since a converter keeps state between calls.

#ifndef SCORING_HOSTAPI_QUILLONTRANSCODER_H_
#define SCORING_HOSTAPI_QUILLONTRANSCODER_H_

#include <memory>
#include <string>

#include "scoring/hostapi/DomTypes.h"
#include "scoring/hostapi/HostExport.h"

namespace OrbScore {

class ORBSCORE_EXPORT QuillonTranscoder {
 public:
  // `encoding` is a name such as "UTF-8", "ISO-8859-1" or "windows-1252"; empty means UTF-8.
  // Throws QuException when no converter of that name exists.
  explicit QuillonTranscoder(const std::string& encoding);
  ~QuillonTranscoder();
  QuillonTranscoder(const QuillonTranscoder&) = delete;
  QuillonTranscoder& operator=(const QuillonTranscoder&) = delete;

  const std::string& GetEncoding() const noexcept;

  // The text in the encoding; characters that it lacks become its replacement character. Null
  // gives the empty string.
  std::string transcodeTo(const DomChar* text) const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace OrbScore

#endif  // SCORING_HOSTAPI_QUILLONTRANSCODER_H_
