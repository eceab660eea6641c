// An output stream over whatever takes bytes.
//
// The stream formats as a stream in the classic locale. Bytes are gathered and handed over in large
// blocks. What the sink throws is kept, the stream goes bad, and finish() throws it: code that
// writes to a stream and never asks it loses no error that way.
//
// Threads: one at a time.

#ifndef IO_SINKSTREAM_H_
#define IO_SINKSTREAM_H_

#include <functional>
#include <memory>
#include <ostream>
#include <string_view>

namespace orbseq {

class SinkStream : public std::ostream {
 public:
  using Sink = std::function<void(std::string_view)>;

  explicit SinkStream(Sink sink);
  ~SinkStream() override;  // what is not handed over by then is dropped

  // Hands over the rest. Throws what the sink threw, now or before.
  void finish();

 private:
  class Buffer;

  std::unique_ptr<Buffer> buffer_;
};

}  // namespace orbseq

#endif  // IO_SINKSTREAM_H_
