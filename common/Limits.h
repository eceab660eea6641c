// Every limit on what comes from outside, with its default. Whoever reads takes the part that
// concerns it; what goes beyond a limit is refused with an error that names the limit, never cut
// short.
//
// Limits of what a person can set have an option of the program; `orbseq --limits` prints all.

#ifndef COMMON_LIMITS_H_
#define COMMON_LIMITS_H_

#include <cstddef>
#include <cstdint>
#include <limits>

namespace orbseq {

// Of an XML document. A parsed document takes about 20 to 90 times its bytes of memory.
struct DocumentLimits {
  // Bytes of the whole document; --max-document-bytes.
  std::size_t bytes = std::size_t{64} << 20;
  // Elements from the root, counted, to the innermost.
  int depth = 64;
  // Attributes of one element.
  int attributes = 64;
  // Elements of the whole document; --max-elements.
  std::size_t elements = 4'000'000;
  // Bytes, in UTF-8, of the name of an element or an attribute.
  std::size_t nameBytes = 1024;
  // Different names of elements and attributes together. The parser's time for a name grows with
  // the number of names, so that a document made of names alone would take hours.
  std::size_t names = 1024;
};

// Of a lattice that is read, in whatever form.
struct LatticeLimits {
  static constexpr std::int32_t kItemsInSequence = 32;
  static constexpr std::int32_t kLevels = 64;  // at least 1
  // First buckets of all level tables together. A larger number is refused and not made smaller,
  // since capacity decides in which order a table is walked.
  static constexpr std::int32_t kBuckets = std::int32_t{1} << 22;
};

// Sequences of a level that share a bucket: keys can be made to, and each one that is read walks
// them all. The whole process has one such limit, since streams are read by operations that have
// no room for it; a module that is loaded beside has its own, with the default. Any thread;
// set it before anything is read. Requires 1 or more.
constexpr std::int32_t kMostInChain = 1000;
std::int32_t mostInChain() noexcept;
void setMostInChain(std::int32_t sequences) noexcept;

// Of a CSV file.
struct CsvLimits {
  std::size_t fieldBytes = std::size_t{1} << 20U;  // bytes of one field, quotes taken off
  std::size_t fields = 1024;                       // fields of one row
  std::size_t rowBytes = std::size_t{1} << 24U;    // bytes of one row's fields together
};

// Of the labels that stand beside a model: one may be as long as a document holds.
constexpr CsvLimits kLabelLimits = {.fieldBytes = std::size_t{1} << 26U,
                                    .fields = CsvLimits().fields,
                                    .rowBytes = std::size_t{1} << 27U};

// Of logs and histories in their other forms.
struct LogLimits {
  static constexpr std::size_t kTexts = 4'000'000;                  // different items
  static constexpr std::size_t kTextBytes = std::size_t{1} << 20U;  // of an item, a description
  static constexpr int kJsonDepth = 64;                  // objects and arrays inside one another
  static constexpr std::uintmax_t kGzipExpansion = 100;  // times its size; logs come to some 20
  static constexpr std::size_t kDatabaseInMemory = std::size_t{4} << 30U;  // bytes
  static constexpr int kDatabaseBytes = 16 << 20;                          // of a text, of a row
};

// Of a case: a customer's history as text, and the search for its answers. By default there is
// none; strangers() is for services that face the world.
struct CaseLimits {
  static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

  std::size_t textBytes = kNone;
  std::size_t sets = kNone;
  std::size_t items = kNone;  // different ones of each set, over all sets
  std::uint64_t steps = std::numeric_limits<std::uint64_t>::max();  // engine/Workspace.h

  static constexpr CaseLimits strangers() noexcept {
    return {std::size_t{64} << 10, 1'000, 10'000, 10'000'000};
  }
};

}  // namespace orbseq

#endif  // COMMON_LIMITS_H_
