#include "io/LineReader.h"

#include "common/guards.h"
#include "io/IoError.h"

namespace orbseq {

bool LineReader::next() {
  line_.clear();
  bool begun = false;
  for (;;) {
    if (rest_.empty()) rest_ = source_.next();
    if (rest_.empty()) return begun;
    if (!begun) ++number_;
    begun = true;

    const std::size_t end = rest_.find('\n');
    const std::string_view piece = rest_.substr(0, end);
    if (line_.size() + piece.size() > limit_ && guarded("log.line bytes"))
      throw InputError(source_.name(), number_,
                       "the line is longer than " + std::to_string(limit_) + " bytes, the limit");
    line_.append(piece);
    const bool ended = end != std::string_view::npos;
    rest_.remove_prefix(piece.size() + (ended ? 1 : 0));
    if (ended) return true;
  }
}

}  // namespace orbseq
