// What a CSV file may hold before it is refused.

#ifndef IO_CSVLIMITS_H_
#define IO_CSVLIMITS_H_

#include <cstddef>

namespace orbseq {

// Each value is the largest that is accepted.
struct CsvLimits {
  std::size_t fieldBytes = std::size_t{1} << 20U;  // bytes of one field, quotes taken off
  std::size_t fields = 1024;                       // fields of one row
  std::size_t rowBytes = std::size_t{1} << 24U;    // bytes of one row's fields together
};

}  // namespace orbseq

#endif  // IO_CSVLIMITS_H_
