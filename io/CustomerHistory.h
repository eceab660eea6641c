// One customer's history, as a reader hands it over.

#ifndef IO_CUSTOMERHISTORY_H_
#define IO_CUSTOMERHISTORY_H_

#include <cstddef>
#include <string>

namespace orbseq {

struct CustomerHistory {
  std::string customer;  // UTF-8 without NUL; may be empty
  std::string history;   // item sets, oldest first, such as "(1 2)(3)"; empty: nothing bought yet
  std::size_t row = 0;   // the line of the file on which it begins, from 1
};

}  // namespace orbseq

#endif  // IO_CUSTOMERHISTORY_H_
