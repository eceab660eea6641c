// Writing to a descriptor.

#ifndef IO_WRITEALL_H_
#define IO_WRITEALL_H_

#include <string>
#include <string_view>

namespace orbseq {

// Writes all of the bytes. `name` is what the descriptor is called in errors.
//
// Errors: FileError when that cannot be done, and, with EINTR, when a person asked to stop
// (io/process.h), also while the call waits for a reader that does not come.
void writeAll(int descriptor, std::string_view bytes, const std::string& name);

}  // namespace orbseq

#endif  // IO_WRITEALL_H_
